// SPDX-License-Identifier: MIT
// A short table of a page: what it shows of each item, and where that leads.
import type { ComponentChildren } from "preact";
import { t } from "./texts.ts";

export interface TableColumn<Item> {
  title: string;
  cell: (item: Item) => ComponentChildren;
  isNumber?: boolean;
  /** Not worth its room on a phone. */
  isSpare?: boolean;
}

interface Props<Item> {
  label: string;
  columns: TableColumn<Item>[];
  items: Item[];
  empty?: string;
  foot?: ComponentChildren;
}

const kindOf = <Item,>({ isNumber, isSpare }: TableColumn<Item>): string =>
  [isNumber && "number", isSpare && "spare"].filter(Boolean).join(" ");

export function Table<Item>({ label, columns, items, empty, foot }: Props<Item>) {
  if (items.length === 0) return <p class="soft">{empty ?? t("nothingHere")}</p>;
  return (
    <div class="table-box" role="region" aria-label={label} tabIndex={0}>
      <table class="table">
        <thead>
          <tr>{columns.map((column) => <th key={column.title} scope="col" class={kindOf(column)}>{column.title}</th>)}</tr>
        </thead>
        <tbody>
          {items.map((item, index) => (
            <tr key={index}>{columns.map((column) => <td key={column.title} class={kindOf(column)}>{column.cell(item)}</td>)}</tr>
          ))}
        </tbody>
        {foot && <tfoot>{foot}</tfoot>}
      </table>
    </div>
  );
}

/** A part of a page under a heading of its own; that of the page itself where it is the first. */
export function Part({ title, children, side, isFirst, isBroad }: { title: string; children: ComponentChildren; side?: ComponentChildren; isFirst?: boolean; isBroad?: boolean }) {
  return (
    <section class={isBroad ? "part broad" : "part"}>
      <div class="row">{isFirst ? <h1>{title}</h1> : <h2>{title}</h2>}<span class="gap" />{side}</div>
      {children}
    </section>
  );
}

/** Names and what they are, those that are filled. */
export function Facts({ facts }: { facts: [string, ComponentChildren][] }) {
  const filled = facts.filter(([, value]) => value !== null && value !== undefined && value !== "");
  return (
    <dl class="facts">
      {filled.map(([name, value]) => <div key={name}><dt>{name}</dt><dd>{value}</dd></div>)}
    </dl>
  );
}

/** A figure that is read at a glance. */
export function Figure({ name, value, kind = "" }: { name: string; value: string; kind?: string }) {
  return <div class={`figure ${kind}`}><span class="figure-name">{name}</span><span class="figure-value">{value}</span></div>;
}
