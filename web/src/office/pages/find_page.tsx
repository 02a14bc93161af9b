// SPDX-License-Identifier: MIT
// Looks for articles, customers or suppliers while one types. The box at the top of every page asks the same.
import { useEffect, useRef, useState } from "preact/hooks";
import { query } from "../../shared/api.ts";
import { Show, useAsked } from "../load.tsx";
import { href } from "../routes.ts";
import { Part, Table, type TableColumn } from "../table.tsx";
import { type OfficeText, t } from "../texts.ts";
import { money, quantity } from "../values.ts";
import { may } from "../../shared/session.ts";

export interface FoundArticle { code: string; description: string; price: number; family?: string; stock?: number | null }
export interface FoundPartner { code: string; name: string; place?: string; fiscalNumber?: string; phone?: string }
export interface Found { articles?: FoundArticle[]; customers?: FoundPartner[]; suppliers?: FoundPartner[] }

export type What = "articles" | "customers" | "suppliers";

interface Kind {
  title: OfficeText;
  hint: OfficeText;
  list: string;
  page: string;
}

export const kKinds: Record<What, Kind> = {
  articles: { title: "articles", hint: "findArticle", list: "clsArticulos", page: "article" },
  customers: { title: "customerAccounts", hint: "findCustomer", list: "ClsClientes", page: "customer" },
  suppliers: { title: "supplierAccounts", hint: "findSupplier", list: "ClsProveedores", page: "supplier" },
};

const kPause = 120; // ms after the last key

/** `text` as it was a moment ago, so that not each key asks. */
export function useSettled(text: string): string {
  const [settled, setSettled] = useState(text);
  useEffect(() => {
    const timer = setTimeout(() => setSettled(text), kPause);
    return () => clearTimeout(timer);
  }, [text]);
  return settled;
}

export const searchPath = (what: What, text: string, most: number): string => `/${what}/search${query({ q: text, most })}`;

export function FindPage({ what }: { what: What }) {
  const kind = kKinds[what];
  const [text, setText] = useState("");
  const settled = useSettled(text.trim());
  const asked = useAsked<Found>(settled === "" ? undefined : searchPath(what, settled, 50));
  // What was found stays while the next is looked for.
  const latest = useRef<Found | undefined>(undefined);
  if (asked.value) latest.current = asked.value;
  const found = settled === "" ? undefined : asked.value ?? (asked.error === undefined ? latest.current : undefined);
  const box = useRef<HTMLInputElement>(null);
  useEffect(() => box.current?.focus(), []);

  return (
    <Part title={t(kind.title)} isFirst side={<>
      {may("office.write") && <a class="button" href={href`/list/${kind.list}/new`}>{t("newOne")}</a>}
      {may("office.read") && <a class="button" href={href`/list/${kind.list}`}>{t("wholeList")}</a>}
    </>}>
      <label class="field">
        <span>{t(kind.hint)}</span>
        <input ref={box} class="input large" type="search" autocomplete="off" value={text}
               onInput={(event) => setText(event.currentTarget.value)}
               onKeyDown={(event) => {
                 const first = found && codesOf(found, what)[0];
                 if (event.key === "Enter" && first !== undefined) location.hash = href`/${kind.page}/${first}`;
               }} />
      </label>
      {settled !== "" && (
        <Show asked={{ ...asked, value: found }}>{(value) => <FoundTable what={what} found={value} />}</Show>
      )}
    </Part>
  );
}

const codesOf = (found: Found, what: What): string[] => (found[what] ?? []).map(({ code }) => code);

function FoundTable({ what, found }: { what: What; found: Found }) {
  if (what === "articles") {
    const columns: TableColumn<FoundArticle>[] = [
      { title: t("code"), cell: ({ code }) => <a href={href`/article/${code}`}>{code}</a> },
      { title: t("description"), cell: ({ description }) => description },
      { title: t("price"), isNumber: true, cell: ({ price }) => money(price) },
      { title: t("stock"), isNumber: true, cell: ({ stock }) => (typeof stock === "number" ? quantity(stock) : "") },
    ];
    return <Table label={t("articles")} columns={columns} items={found.articles ?? []} empty={t("nothingFound")} />;
  }
  const page = kKinds[what].page;
  const columns: TableColumn<FoundPartner>[] = [
    { title: t("code"), cell: ({ code }) => <a href={href`/${page}/${code}`}>{code}</a> },
    { title: t("name"), cell: ({ code, name }) => <a href={href`/${page}/${code}`}>{name || code}</a> },
    { title: t("place"), cell: ({ place }) => place },
    { title: t("fiscalNumber"), isSpare: true, cell: ({ fiscalNumber }) => fiscalNumber },
    { title: t("phone"), isSpare: true, cell: ({ phone }) => phone },
  ];
  return <Table label={t(kKinds[what].title)} columns={columns} items={found[what] ?? []} empty={t("nothingFound")} />;
}
