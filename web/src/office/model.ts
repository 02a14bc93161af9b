// SPDX-License-Identifier: MIT
// What the server tells of classes, their columns and their rows.

export type Value = string | number | boolean | null;
export type Values = Record<string, Value>;
export type ColumnType = "text" | "number" | "money" | "date" | "flag" | "memo" | "integer" | "binary";

export interface Column {
  name: string;
  label: string;
  type: ColumnType;
  size: number;
  nullable: boolean;
  key: boolean;
  /** Only tells the row: it is read with it and not shown. */
  hidden?: boolean;
  writable?: boolean;
  decimals?: number;
}

export interface ClassLine {
  name: string;
  word: string;
  title: string;
  modes: string[];
  /** Those that look for a code. */
  modesWithId?: string[];
  hasRows?: boolean;
  canWrite: boolean;
  /** Why its rows cannot be changed. */
  whyNot?: string;
}

/** With the columns and the view of one of its modes. */
export interface ClassInfo extends ClassLine {
  columns: Column[];
  view?: View;
}

export interface View {
  columns?: { name: string; visible: boolean; width: number }[];
  order?: { column: string; descending: boolean } | null;
}

export interface RowsAnswer {
  columns: Column[];
  rows: Value[][];
  total: number;
  offset: number;
}

/** What tells a record from all others: values by their columns, or in the order of the key. */
export type Key = Values | Value[];

export interface RecordAnswer {
  /** None of a record that is not stored yet. */
  key?: Key;
  values: Values;
  columns?: Column[];
}
