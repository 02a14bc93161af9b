// SPDX-License-Identifier: MIT
// Somebody else has stored the record meanwhile: theirs and mine side by side, chosen field by field.
import { useState } from "preact/hooks";
import { Dialog } from "../../shared/dialog.tsx";
import type { Column, Value, Values } from "../model.ts";
import { t } from "../texts.ts";
import { shown } from "../values.ts";

interface Props {
  columns: Column[];
  /** As the form read it. */
  before: Values;
  /** Only what was changed here. */
  mine: Values;
  theirs: Values;
  error: string;
  onClose: () => void;
  /** What is to be stored over theirs; nothing where theirs was taken as it is. */
  onStore: (values: Values) => void;
}

export function Conflict({ columns, before, mine, theirs, error, onClose, onStore }: Props) {
  // What only one of the two has changed is his; both have to be asked about the rest.
  const differing = columns.filter(({ name }) => name in theirs &&
    (theirs[name] !== before[name] || (name in mine && mine[name] !== theirs[name])));
  const isMineToBegin = ({ name }: Column): boolean => name in mine && theirs[name] === before[name];
  const [chosen, setChosen] = useState<Record<string, "mine" | "theirs" | undefined>>(() =>
    Object.fromEntries(differing.map((column) => [column.name,
      isMineToBegin(column) ? "mine" : column.name in mine && mine[column.name] !== theirs[column.name] ? undefined : "theirs"])));
  const open = differing.filter(({ name }) => chosen[name] === undefined).length;
  const all = (whose: "mine" | "theirs"): void =>
    setChosen(Object.fromEntries(differing.map(({ name }) => [name, whose === "mine" && !(name in mine) ? "theirs" : whose])));

  const store = (): void =>
    onStore(Object.fromEntries(Object.entries(mine).filter(([name]) => chosen[name] !== "theirs")));

  const choice = (column: Column, whose: "mine" | "theirs", value: Value | undefined) => (
    <td>
      <label class="check">
        <input type="radio" name={`whose-${column.name}`} checked={chosen[column.name] === whose}
               onChange={() => setChosen((old) => ({ ...old, [column.name]: whose }))} />
        <span>{shown(value, column) || t("empty")}</span>
      </label>
    </td>
  );

  return (
    <Dialog title={t("conflict")} close={onClose} closeText={t("close")} className="wide"
            footer={<>
              <button type="button" class="button" onClick={() => all("theirs")}>{t("allTheirs")}</button>
              <button type="button" class="button" onClick={() => all("mine")}>{t("allMine")}</button>
              <button type="button" class="button main" disabled={open > 0} onClick={store}>{t("storeChosen")}</button>
            </>}>
      <p>{t("conflictMeaning")}</p>
      {error && <p class="note bad" role="alert">{error}</p>}
      <table class="table">
        <thead>
          <tr><th scope="col">{t("field")}</th><th scope="col">{t("asRead")}</th><th scope="col">{t("theirs")}</th><th scope="col">{t("mine")}</th></tr>
        </thead>
        <tbody>
          {differing.map((column) => (
            <tr key={column.name}>
              <th scope="row">{column.label}</th>
              <td class="soft">{shown(before[column.name], column) || t("empty")}</td>
              {choice(column, "theirs", theirs[column.name])}
              {column.name in mine ? choice(column, "mine", mine[column.name]) : <td class="soft">{t("notChanged")}</td>}
            </tr>
          ))}
        </tbody>
      </table>
      {open > 0 && <p class="soft" role="status">{t("stillToChoose", { count: open })}</p>}
    </Dialog>
  );
}
