// SPDX-License-Identifier: MIT
// The closings of the tills: each begins with the balance that the one before it has left.
import { useState } from "preact/hooks";
import { query } from "../../shared/api.ts";
import { daysAfter } from "../../shared/dates.ts";
import { PeriodFields } from "../period.tsx";
import { Show, useAsked } from "../load.tsx";
import { href } from "../routes.ts";
import { session } from "../../shared/session.ts";
import { Figure, Part, Table } from "../table.tsx";
import { t } from "../texts.ts";
import { day, money, quantity } from "../values.ts";

interface ClosingLine {
  closing: number;
  till: string;
  day: string;
  total: number;
  start?: number;
  end?: number;
  counted?: number | null;
  difference?: number | null;
  isBroken?: boolean;
}
interface Share { code?: string; name: string; amount: number }
interface ClosingAnswer extends ClosingLine {
  slip?: string[];
  tickets?: number;
  expected?: number;
  families?: Share[];
  payments?: Share[];
  taxes?: { rate: number; base: number; tax: number }[];
  previous?: { closing: number; end: number } | null;
  next?: { closing: number; start: number } | null;
}

const kDaysShown = 31;

const cents = (value: number): number => Math.round(value * 100);

export function ClosingsPage({ search }: { search: URLSearchParams }) {
  const { today, tills } = session.get();
  const [till, setTill] = useState(search.get("till") ?? "");
  const [period, setPeriod] = useState({ from: daysAfter(today, -kDaysShown), to: today });
  const asked = useAsked<{ closings: ClosingLine[] }>(`/closings${query({ till: till || undefined, ...period })}`);
  return (
    <>
      <h1>{t("closings")}</h1>
      <div class="row">
        <label class="row"><span class="label">{t("till")}</span>
          <select class="input" value={till} onChange={(event) => setTill(event.currentTarget.value)}>
            <option value="">{t("allTills")}</option>
            {tills.map(({ code, name }) => <option key={code} value={code}>{`${code} ${name}`}</option>)}
          </select>
        </label>
        <PeriodFields period={period} setPeriod={setPeriod} />
      </div>
      <Show asked={asked}>
        {({ closings }) => (
          <Table label={t("closings")} items={closings} empty={t("noClosings")}
                 columns={[
                   { title: t("number"), cell: ({ closing }) => <a href={href`/closing/${closing}`}>{closing}</a> },
                   { title: t("day"), cell: (one) => day(one.day) },
                   { title: t("till"), cell: (one) => one.till },
                   { title: t("startBalance"), isNumber: true, isSpare: true, cell: ({ start }) => (start === undefined ? "" : money(start)) },
                   { title: t("sold"), isNumber: true, cell: ({ total }) => money(total) },
                   { title: t("endBalance"), isNumber: true, isSpare: true, cell: ({ end }) => (end === undefined ? "" : money(end)) },
                   { title: t("difference"), isNumber: true, cell: ({ difference }) => <Difference value={difference} /> },
                 ]} />
        )}
      </Show>
    </>
  );
}

function Difference({ value }: { value: number | null | undefined }) {
  if (value === null || value === undefined) return <span class="soft">{t("notCounted")}</span>;
  return <span class={cents(value) === 0 ? "good" : "bad"}>{money(value)}</span>;
}

export function ClosingPage({ number }: { number: string }) {
  const asked = useAsked<ClosingAnswer>(`/closings/${encodeURIComponent(number)}`);
  return (
    <>
      <div class="row">
        <h1>{t("closingNumber", { number })}</h1>
        <span class="gap" />
        <a class="button" href={`/print/closing/${encodeURIComponent(number)}`} target="_blank" rel="noopener">{t("print")}</a>
      </div>
      <Show asked={asked}>{(closing) => <Closing closing={closing} />}</Show>
    </>
  );
}

function Closing({ closing }: { closing: ClosingAnswer }) {
  const { previous, next, start, end } = closing;
  const isWhole = previous === null || previous === undefined || start === undefined || cents(previous.end) === cents(start);
  const shares = (items: Share[], label: string) => (
    <Table label={label} items={items}
           columns={[
             { title: t("name"), cell: ({ name, code }: Share) => name || code },
             { title: t("amount"), isNumber: true, cell: ({ amount }: Share) => money(amount) },
           ]} />
  );
  return (
    <>
      <div class="figures">
        <Figure name={t("sold")} value={money(closing.total)} kind="main" />
        {closing.tickets !== undefined && <Figure name={t("tickets")} value={quantity(closing.tickets)} />}
        {typeof closing.expected === "number" && <Figure name={t("expectedCash")} value={money(closing.expected)} />}
        {typeof closing.counted === "number" && <Figure name={t("countedCash")} value={money(closing.counted)} />}
        {typeof closing.difference === "number" &&
          <Figure name={t("difference")} value={money(closing.difference)} kind={cents(closing.difference) === 0 ? "good" : "bad"} />}
      </div>
      <ol class="chain" aria-label={t("chain")}>
        <li>
          <span class="soft">{t("closingBefore")}</span>
          {previous ? <a href={href`/closing/${previous.closing}`}>{t("closingNumber", { number: previous.closing })}</a> : <span>{t("firstClosing")}</span>}
          {previous && <b>{money(previous.end)}</b>}
        </li>
        <li class={isWhole ? "here" : "here bad"}>
          <span class="soft">{t("till")} {closing.till} · {day(closing.day)}</span>
          <span>{t("startBalance")} <b>{start === undefined ? "–" : money(start)}</b></span>
          <span>{t("endBalance")} <b>{end === undefined ? "–" : money(end)}</b></span>
        </li>
        <li>
          <span class="soft">{t("closingAfter")}</span>
          {next ? <a href={href`/closing/${next.closing}`}>{t("closingNumber", { number: next.closing })}</a> : <span>{t("lastClosing")}</span>}
          {next && <b>{money(next.start)}</b>}
        </li>
      </ol>
      {!isWhole && previous && <p class="note bad" role="alert">{t("chainBroken", { before: money(previous.end), start: money(start ?? 0) })}</p>}
      <div class="parts">
        {closing.payments && <Part title={t("byPayment")}>{shares(closing.payments, t("byPayment"))}</Part>}
        {closing.families && <Part title={t("byFamily")}>{shares(closing.families, t("byFamily"))}</Part>}
        {closing.taxes && <Part title={t("taxes")}>
          <Table label={t("taxes")} items={closing.taxes}
                 columns={[
                   { title: t("rate"), isNumber: true, cell: ({ rate }) => `${quantity(rate)} %` },
                   { title: t("base"), isNumber: true, cell: ({ base }) => money(base) },
                   { title: t("tax"), isNumber: true, cell: ({ tax }) => money(tax) },
                 ]} />
        </Part>}
        {closing.slip && <Part title={t("slip")} side={
          <a href={`#/tickets${query({ day: closing.day.slice(0, 10), till: closing.till })}`}>{t("ticketsOfDay")}</a>}><pre class="slip" tabIndex={0} role="region" aria-label={t("slip")}>{closing.slip.join("\n")}</pre></Part>}
      </div>
    </>
  );
}
