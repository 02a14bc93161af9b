// SPDX-License-Identifier: MIT
// A list of any length: only the rows in view are in the page, and what is behind the scroll bar is asked
// when it comes into view. It is one place of the keyboard; the arrows walk in it, up into its headings.
import { useLayoutEffect, useRef, useState } from "preact/hooks";
import type { Column, Value } from "../model.ts";
import { t } from "../texts.ts";
import { isNumeric, shown } from "../values.ts";
import { geometryOf, kRowHeight } from "./geometry.ts";

export interface GridColumn {
  column: Column;
  /** Its place in a row. */
  at: number;
  width: number; // pixels
}

export interface Order {
  column: string;
  descending: boolean;
}

/** Where the keyboard is: row -1 are the headings. */
export interface Cell {
  row: number;
  at: number; // among the columns shown
}

interface Props {
  label: string;
  columns: GridColumn[];
  total: number;
  rowAt: (index: number) => Value[] | undefined;
  want: (first: number, last: number) => void;
  order: Order | undefined;
  cell: Cell;
  setCell: (cell: Cell) => void;
  onOrder: (column: Column) => void;
  onOpen: (row: number) => void;
  onWidth: (column: Column, width: number) => void;
  onKey?: (event: KeyboardEvent) => void;
}

export const kNarrowest = 48; // pixels
const kWidthStep = 16;

export function Grid({ label, columns, total, rowAt, want, order, cell, setCell, onOrder, onOpen, onWidth,
                       onKey }: Props) {
  const box = useRef<HTMLDivElement>(null);
  const [scrolled, setScrolled] = useState(0);
  const [view, setView] = useState(0);

  const headHeight = kRowHeight;
  const rowsView = Math.max(0, view - headHeight);
  const geometry = geometryOf(total, rowsView);
  const top = total === 0 ? 0 : Math.min(geometry.rowAt(scrolled), Math.max(0, total - rowsView / kRowHeight));
  const first = Math.floor(top);
  const last = Math.min(total - 1, Math.ceil(top + rowsView / kRowHeight));

  useLayoutEffect(() => {
    const element = box.current;
    if (!element) return;
    const measure = (): void => setView(element.clientHeight);
    measure();
    const observer = new ResizeObserver(measure);
    observer.observe(element);
    return () => observer.disconnect();
  }, []);

  // A list comes later than its page: it takes the keyboard where nobody has begun elsewhere.
  useLayoutEffect(() => {
    const { activeElement } = document;
    if (activeElement === document.body || activeElement?.tagName === "MAIN") box.current?.focus();
  }, []);

  useLayoutEffect(() => {
    if (last >= first) want(first, last);
  }, [first, last, want]);

  // The row of the keyboard is brought into view where it has moved, not where somebody scrolls.
  useLayoutEffect(() => {
    const element = box.current;
    if (!element || cell.row < 0 || rowsView <= 0) return;
    const whole = Math.max(1, Math.floor(rowsView / kRowHeight));
    let target: number | undefined;
    if (cell.row < top) target = cell.row;
    else if (cell.row > top + rowsView / kRowHeight - 1) target = cell.row - whole + 1;
    if (target !== undefined) element.scrollTop = Math.ceil(geometry.placeOf(Math.max(0, target)));
  }, [cell.row, rowsView > 0, total]);
  useLayoutEffect(() => {
    const element = box.current;
    if (!element) return;
    const left = columns.slice(0, cell.at).reduce((sum, { width }) => sum + width, 0);
    const right = left + (columns[cell.at]?.width ?? 0);
    if (left < element.scrollLeft) element.scrollLeft = left;
    else if (right > element.scrollLeft + element.clientWidth) {
      element.scrollLeft = Math.min(left, right - element.clientWidth);
    }
  }, [cell.at]);

  function pressed(event: KeyboardEvent): void {
    if (event.ctrlKey || event.metaKey || event.altKey) {
      onKey?.(event);
      return;
    }
    const isHead = cell.row < 0;
    const heading = columns[cell.at];
    const pageRows = Math.max(1, Math.floor(rowsView / kRowHeight) - 1);
    const to = (row: number, at = cell.at): void =>
      setCell({ row: Math.max(-1, Math.min(total - 1, row)), at: Math.max(0, Math.min(columns.length - 1, at)) });
    if (event.shiftKey && heading && (event.key === "ArrowLeft" || event.key === "ArrowRight")) {
      const wider = event.key === "ArrowRight" ? kWidthStep : -kWidthStep;
      onWidth(heading.column, Math.max(kNarrowest, heading.width + wider));
    } else if (event.key === "ArrowDown") to(cell.row + 1);
    else if (event.key === "ArrowUp") to(cell.row - 1);
    else if (event.key === "ArrowLeft") to(cell.row, cell.at - 1);
    else if (event.key === "ArrowRight") to(cell.row, cell.at + 1);
    else if (event.key === "PageDown") to(Math.max(0, cell.row) + pageRows);
    else if (event.key === "PageUp") to(Math.max(0, cell.row - pageRows));
    else if (event.key === "Home") to(0);
    else if (event.key === "End") to(total - 1);
    else if ((event.key === "Enter" || event.key === " ") && isHead && heading) onOrder(heading.column);
    else if (event.key === "Enter") onOpen(cell.row);
    else {
      onKey?.(event);
      return;
    }
    event.preventDefault();
  }

  const isCellHere = columns.length > 0 && (cell.row === -1 || (cell.row >= first && cell.row <= last));
  const widths = columns.map(({ width }) => `${width}px`).join(" ");
  const rows = [];
  for (let index = first; index <= last; ++index) {
    rows.push(
      <GridRow key={index} index={index} columns={columns} values={rowAt(index)}
               activeAt={index === cell.row ? cell.at : undefined} />,
    );
  }

  const onRowClick = (event: MouseEvent): void => {
    const element = (event.target as Element).closest<HTMLElement>("[data-row]");
    if (!element) return;
    const row = Number(element.dataset.row);
    const at = (event.target as Element).closest<HTMLElement>("[data-at]")?.dataset.at;
    setCell({ row, at: Number(at ?? cell.at) });
    // A finger opens by a tap, a mouse by a double click.
    if (event.detail === 2 || (event as PointerEvent).pointerType === "touch") onOpen(row);
  };

  return (
    <div class="grid" ref={box} role="grid" tabIndex={0} aria-label={label} aria-rowcount={total + 1}
         aria-colcount={columns.length} aria-activedescendant={isCellHere ? `cell-${cell.row}-${cell.at}` : undefined}
         aria-readonly="true" onKeyDown={pressed}
         onScroll={(event) => setScrolled(event.currentTarget.scrollTop)}>
      <div class="grid-window" role="presentation"
           style={{ height: `${view}px`, "--columns": widths }}>
        <div class="grid-row grid-head" role="row" aria-rowindex={1}>
          {columns.map(({ column, width }, at) => (
            <Heading key={column.name} column={column} at={at} width={width} isActive={cell.row === -1 && cell.at === at}
                     order={order?.column === column.name ? order : undefined}
                     onOrder={() => { setCell({ row: cell.row, at }); onOrder(column); }}
                     onWidth={(wanted) => onWidth(column, wanted)} />
          ))}
        </div>
        <div class="grid-rows" role="rowgroup" onClick={onRowClick}
             style={{ transform: `translateY(${-(top - first) * kRowHeight}px)` }}>
          {rows}
        </div>
      </div>
      <div class="grid-length" role="presentation" style={{ height: `${Math.max(0, geometry.height - rowsView)}px` }} />
    </div>
  );
}

interface RowProps {
  index: number;
  columns: GridColumn[];
  values: Value[] | undefined;
  activeAt: number | undefined;
}

function GridRow({ index, columns, values, activeAt }: RowProps) {
  const kind = `grid-row${index % 2 === 1 ? " odd" : ""}${activeAt === undefined ? "" : " active"}`;
  return (
    <div class={kind} role="row" aria-rowindex={index + 2} aria-selected={activeAt !== undefined} data-row={index}
         aria-busy={values === undefined}>
      {columns.map(({ column, at: place }, at) => (
        <div key={column.name} role="gridcell" aria-colindex={at + 1} id={`cell-${index}-${at}`} data-at={at}
             class={`grid-cell${isNumeric(column) ? " number" : ""}${at === activeAt ? " active" : ""}`}>
          {values === undefined ? (at === 0 ? "…" : "") : shown(values[place], column)}
        </div>
      ))}
    </div>
  );
}

interface HeadingProps {
  column: Column;
  at: number;
  width: number;
  isActive: boolean;
  order: Order | undefined;
  onOrder: () => void;
  onWidth: (width: number) => void;
}

function Heading({ column, at, width, isActive, order, onOrder, onWidth }: HeadingProps) {
  const drag = useRef<{ x: number; width: number } | undefined>(undefined);
  return (
    <div role="columnheader" aria-colindex={at + 1} id={`cell--1-${at}`} title={column.label}
         aria-sort={order ? (order.descending ? "descending" : "ascending") : "none"}
         class={`grid-cell grid-heading${isNumeric(column) ? " number" : ""}${isActive ? " active" : ""}`}
         onClick={onOrder}>
      <span class="grid-title">{column.label}</span>
      {order && <span aria-hidden="true">{order.descending ? " ▼" : " ▲"}</span>}
      <span class="grid-edge" title={t("dragWidth")} aria-hidden="true"
            onClick={(event) => event.stopPropagation()}
            onPointerDown={(event) => {
              event.preventDefault();
              event.currentTarget.setPointerCapture(event.pointerId);
              drag.current = { x: event.clientX, width };
            }}
            onPointerMove={(event) => {
              const from = drag.current;
              if (from) onWidth(Math.max(kNarrowest, Math.round(from.width + event.clientX - from.x)));
            }}
            onPointerUp={() => { drag.current = undefined; }} />
    </div>
  );
}
