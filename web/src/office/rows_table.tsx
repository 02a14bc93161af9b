// SPDX-License-Identifier: MIT
// Rows of a class as a short table: its columns by their own names, those only that some row fills.
import { useAsked } from "./load.tsx";
import type { ClassInfo, Column, Values } from "./model.ts";
import { classPath } from "./paths.ts";
import { Table } from "./table.tsx";
import { isNumeric, shown } from "./values.ts";

interface Props {
  label: string;
  rows: Values[];
  className: string;
  /** Columns that say what the page says already. */
  without?: string[];
}

export function RowsTable({ label, rows, className, without = [] }: Props) {
  const info = useAsked<ClassInfo>(rows.length > 0 ? classPath(className) : undefined);
  const names = [...new Set(rows.flatMap((row) => Object.keys(row)))].filter((name) =>
    !without.includes(name) && rows.some((row) => row[name] !== null && row[name] !== "" && row[name] !== undefined));
  const columns = names.map((name) => columnOf(name, rows, info.value?.columns));
  return (
    <Table label={label} items={rows}
           columns={columns.map((column) => ({
             title: column.label, isNumber: isNumeric(column), cell: (row: Values) => shown(row[column.name], column),
           }))} />
  );
}

/** As the class tells it; what it does not tell is known by its values. */
function columnOf(name: string, rows: Values[], known: Column[] | undefined): Column {
  const told = known?.find((column) => column.name.toLowerCase() === name.toLowerCase());
  if (told) return { ...told, name };
  const sample = rows.map((row) => row[name]).find((value) => value !== null && value !== undefined);
  const type = typeof sample === "number" ? "number" : typeof sample === "boolean" ? "flag"
    : /^\d{4}-\d\d-\d\d/.test(String(sample)) ? "date" : "text";
  return { name, label: name.replaceAll("_", " "), type, size: 0, nullable: true, key: false };
}
