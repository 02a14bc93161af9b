// SPDX-License-Identifier: MIT
// What the server tells of classes, their columns and their rows.

export type Value = string | number | boolean | null;
export type Values = Record<string, Value>;
export type ColumnType = "text" | "number" | "money" | "date" | "flag" | "memo" | "integer";

export interface Column {
  name: string;
  label: string;
  type: ColumnType;
  size: number;
  nullable: boolean;
  key: boolean;
  decimals?: number;
}

export interface ClassLine {
  name: string;
  word: string;
  table: string;
  title: string;
  modes: string[];
  canWrite: boolean;
  count?: number;
}

export interface ClassInfo {
  name: string;
  word: string;
  title?: string;
  modes: string[];
  columns: Column[];
  canWrite?: boolean;
  view?: View;
}

export interface View {
  columns?: { name: string; visible: boolean; width: number }[];
  order?: { column: string; descending: boolean } | null;
  filter?: string;
}

export interface RowsAnswer {
  columns: Column[];
  rows: Value[][];
  total: number;
  offset: number;
}

export interface RecordAnswer {
  key: Values;
  values: Values;
  columns?: Column[];
}
