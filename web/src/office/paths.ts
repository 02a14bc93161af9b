// SPDX-License-Identifier: MIT
// Where the server keeps what: the addresses that more than one page asks.
import { at } from "../shared/api.ts";
import type { Column, Value, Values } from "./model.ts";

export const classPath = (name: string): string => at`/classes/${name}`;

/** A record by its key, which is sent as JSON. */
export const recordPath = (name: string, key: Values): string =>
  `${classPath(name)}/record?${new URLSearchParams({ key: JSON.stringify(key) })}`;

/** What tells a row from all others. */
export function keyOf(columns: Column[], row: Value[]): Values | undefined {
  const parts = columns.flatMap((column, index) => (column.key ? [[column.name, row[index] ?? null] as const] : []));
  return parts.length === 0 ? undefined : Object.fromEntries(parts);
}
