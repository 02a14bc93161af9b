// SPDX-License-Identifier: MIT
// How a list is shown: which columns, how wide, in which order. The server remembers it for the shop.
import { ask } from "../../shared/api.ts";
import type { Column, View } from "../model.ts";
import { classPath } from "../paths.ts";
import { isNumeric } from "../values.ts";
import type { GridColumn } from "./grid.tsx";

/** Of a column that nobody has sized, in pixels. */
export function usualWidth(column: Column): number {
  const byLabel = column.label.length * 8 + 32;
  const byType = column.type === "flag" ? 64
    : column.type === "date" ? 124 : isNumeric(column) ? 112
    : column.type === "memo" ? 240
    : Math.min(260, Math.max(72, column.size * 8));
  return Math.max(byLabel, byType);
}

export interface ShownColumn extends GridColumn {
  visible: boolean;
}

/** The columns of the rows in the order and width that is remembered; what is new comes last. */
export function arranged(columns: Column[], view: View): ShownColumn[] {
  const kept = view.columns ?? [];
  const known = kept.flatMap(({ name, visible, width }) => {
    const at = columns.findIndex((column) => column.name === name);
    const column = columns[at];
    return column ? [{ column, at, visible, width: width > 0 ? width : usualWidth(column) }] : [];
  });
  const others = columns.flatMap((column, at) => column.hidden ||
    known.some((one) => one.at === at) ? [] : [{ column, at, visible: true, width: usualWidth(column) }]);
  return [...known, ...others];
}

export const storeView = async (name: string, mode: string, view: View): Promise<void> => {
  await ask("PUT", `${classPath(name)}/view?${new URLSearchParams({ mode })}`, view);
};
