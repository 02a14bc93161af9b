// SPDX-License-Identifier: MIT
// One condition of a list, as addresses hold it.

export type Comparison = "like" | "eq" | "ne" | "lt" | "le" | "gt" | "ge";

export interface Filter {
  column: string;
  comparison: Comparison;
  /** As the server takes it: 1.5, 2026-11-20, true. */
  value: string;
}

/** COLUMN:OP:VALUE, as an address holds it. */
export const filterText = ({ column, comparison, value }: Filter): string => `${column}:${comparison}:${value}`;

export function filterOf(text: string): Filter | undefined {
  const parts = /^(.*?):(like|eq|ne|lt|le|gt|ge):(.*)$/s.exec(text);
  return parts ? { column: parts[1]!, comparison: parts[2] as Comparison, value: parts[3]! } : undefined;
}
