// SPDX-License-Identifier: MIT
// Which columns a list shows, in which order and how wide.
import { Dialog } from "../../shared/dialog.tsx";
import { t } from "../texts.ts";
import { kNarrowest } from "./grid.tsx";
import type { ShownColumn } from "./view.ts";

interface Props {
  columns: ShownColumn[];
  setColumns: (columns: ShownColumn[]) => void;
  onUsual: () => void;
  onClose: () => void;
}

export function ColumnChooser({ columns, setColumns, onUsual, onClose }: Props) {
  const change = (index: number, part: Partial<ShownColumn>): void =>
    setColumns(columns.map((one, at) => (at === index ? { ...one, ...part } : one)));
  const move = (index: number, by: number): void => {
    const others = [...columns];
    const [moved] = others.splice(index, 1);
    others.splice(index + by, 0, moved!);
    setColumns(others);
  };
  const shownOnes = columns.filter(({ visible }) => visible).length;
  return (
    <Dialog title={t("columns")} close={onClose} closeText={t("close")}
            footer={<>
              <button type="button" class="button" onClick={onUsual}>{t("usualColumns")}</button>
              <button type="button" class="button main" onClick={onClose}>{t("done")}</button>
            </>}>
      <ul class="column-list">
        {columns.map(({ column, visible, width }, index) => (
          <li key={column.name}>
            <label class="check">
              <input type="checkbox" checked={visible} disabled={visible && shownOnes === 1}
                     onChange={(event) => change(index, { visible: event.currentTarget.checked })} />
              <span>{column.label}</span>
            </label>
            <input class="input narrow number" type="number" min={kNarrowest} max={1000} step={8} value={width}
                   aria-label={t("widthOf", { column: column.label })}
                   onChange={(event) => {
                     const wanted = Number(event.currentTarget.value);
                     if (wanted >= kNarrowest && wanted <= 1000) change(index, { width: wanted });
                   }} />
            <button type="button" class="button square" disabled={index === 0} onClick={() => move(index, -1)}
                    aria-label={t("moveUp", { column: column.label })}>↑</button>
            <button type="button" class="button square" disabled={index === columns.length - 1} onClick={() => move(index, 1)}
                    aria-label={t("moveDown", { column: column.label })}>↓</button>
          </li>
        ))}
      </ul>
    </Dialog>
  );
}
