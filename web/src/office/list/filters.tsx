// SPDX-License-Identifier: MIT
// What narrows a list: a column, a comparison, a value each; all of them must hold.
import type { RefObject } from "preact";
import { useState } from "preact/hooks";
import type { Column } from "../model.ts";
import { type OfficeText, t } from "../texts.ts";
import { readValue, shown } from "../values.ts";
import { type Comparison, type Filter, filterText } from "./filter.ts";

const kWords: Record<Comparison, OfficeText> = {
  like: "contains", eq: "equals", ne: "differs", lt: "below", le: "atMost", gt: "above", ge: "atLeast",
};
const kOfText: Comparison[] = ["like", "eq", "ne", "ge", "le"];
const kOfNumber: Comparison[] = ["eq", "ge", "le", "gt", "lt", "ne"];

const comparisonsOf = (column: Column): Comparison[] =>
  column.type === "text" || column.type === "memo" ? kOfText : column.type === "flag" ? ["eq"] : kOfNumber;

interface Props {
  columns: Column[];
  filters: Filter[];
  setFilters: (filters: Filter[]) => void;
  /** Which column is offered, and where the keyboard goes for it. */
  chosen: string;
  setChosen: (column: string) => void;
  valueField: RefObject<HTMLInputElement | null>;
}

export function Filters({ columns, filters, setFilters, chosen, setChosen, valueField }: Props) {
  const column = columns.find(({ name }) => name === chosen) ?? columns[0];
  const [comparison, setComparison] = useState<Comparison>("like");
  const [text, setText] = useState("");
  const [fault, setFault] = useState("");
  if (!column) return null;
  const offered = comparisonsOf(column);
  const used = offered.includes(comparison) ? comparison : offered[0]!;

  function add(event: Event): void {
    event.preventDefault();
    if (!column) return;
    let value = text;
    if (column.type === "flag") value = text === "false" ? "false" : "true";
    else if (column.type !== "text" && column.type !== "memo") {
      const read = readValue(text, { ...column, nullable: false }, null);
      if ("fault" in read) return setFault(read.fault);
      value = String(read.value);
    } else if (text === "") {
      return setFault(t("mustNotBeEmpty"));
    }
    setFault("");
    setText("");
    const wanted = { column: column.name, comparison: used, value };
    setFilters([...filters.filter((one) => filterText(one) !== filterText(wanted)), wanted]);
  }

  return (
    <form class="filters" onSubmit={add} role="search" aria-label={t("filterTheList")}>
      <label class="filter-part">
        <span class="unseen">{t("column")}</span>
        <select class="input" value={column.name}
                onChange={(event) => { setChosen(event.currentTarget.value); setFault(""); }}>
          {columns.map(({ name, label }) => <option key={name} value={name}>{label}</option>)}
        </select>
      </label>
      <label class="filter-part">
        <span class="unseen">{t("comparison")}</span>
        <select class="input" value={used}
                onChange={(event) => setComparison(event.currentTarget.value as Comparison)}>
          {offered.map((one) => <option key={one} value={one}>{t(kWords[one])}</option>)}
        </select>
      </label>
      <label class="filter-part wide">
        <span class="unseen">{t("value")}</span>
        {column.type === "flag"
          ? <select class="input" value={text === "false" ? "false" : "true"}
                    onChange={(event) => setText(event.currentTarget.value)}>
              <option value="true">{t("yes")}</option>
              <option value="false">{t("no")}</option>
            </select>
          : <input class="input" ref={valueField} value={text} autocomplete="off" placeholder={t("filterBy", { column: column.label })}
                   aria-invalid={fault !== ""} aria-describedby={fault ? "filter-fault" : undefined}
                   onInput={(event) => { setText(event.currentTarget.value); setFault(""); }} />}
      </label>
      <button class="button" type="submit">{t("filter")}</button>
      {fault && <span class="fault" id="filter-fault" role="alert">{fault}</span>}
      {filters.length > 0 && (
        <ul class="chips" aria-label={t("filtersInUse")}>
          {filters.map((filter) => <li key={filterText(filter)}><Chip filter={filter} columns={columns}
            onRemove={() => setFilters(filters.filter((one) => one !== filter))} /></li>)}
        </ul>
      )}
    </form>
  );
}

function Chip({ filter, columns, onRemove }: { filter: Filter; columns: Column[]; onRemove: () => void }) {
  const column = columns.find(({ name }) => name === filter.column);
  const raw = filter.value;
  const value = !column || column.type === "text" || column.type === "memo" ? raw
    : column.type === "flag" ? shown(raw === "true", column)
    : column.type === "date" ? shown(raw, column) : shown(Number(raw), column);
  const text = `${column?.label ?? filter.column} ${t(kWords[filter.comparison])} ${value}`;
  return (
    <button type="button" class="chip" onClick={onRemove} aria-label={t("removeFilter", { filter: text })}>
      {text} <span aria-hidden="true">×</span>
    </button>
  );
}
