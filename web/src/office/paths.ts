// SPDX-License-Identifier: MIT
// Where the server keeps what: the addresses that more than one page asks.
import { at } from "../shared/api.ts";
import type { Column, Key, Value } from "./model.ts";

export const classPath = (name: string): string => at`/classes/${name}`;

/** A record by its key, which is sent as JSON. */
export const recordPath = (name: string, key: Key): string =>
  `${classPath(name)}/record?${new URLSearchParams({ key: JSON.stringify(key) })}`;

/** What tells a row from all others. A mode may give a column another name than the form does. */
export function keyOf(columns: Column[], row: Value[]): Key | undefined {
  const parts = columns.flatMap((column, index) => (column.key ? [[column.name, row[index] ?? null] as const] : []));
  if (parts.length === 0) return undefined;
  return parts.length === 1 ? [parts[0]![1]] : Object.fromEntries(parts);
}
