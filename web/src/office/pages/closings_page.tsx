// SPDX-License-Identifier: MIT
// The closings of the tills: each begins with the balance that the one before it has left.
import { useState } from "preact/hooks";
import { at, get, query } from "../../shared/api.ts";
import { daysAfter } from "../../shared/dates.ts";
import { PeriodFields } from "../period.tsx";
import { Show, useAsked, useLoaded } from "../load.tsx";
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
  start: number;
  end: number;
  counted?: number | null;
  difference?: number | null;
  isBroken?: boolean;
}
interface Share { code?: string; name: string; total: number }
interface ClosingAnswer extends ClosingLine {
  slip?: string[];
  tickets?: number;
  expected?: number;
  families?: Share[];
  payments?: Share[];
  taxes?: { rate: number; base: number; tax: number }[];
  previous?: number | null;
}

interface Chain { closing: ClosingAnswer; before: ClosingLine | undefined; after: ClosingLine | undefined }

const kMostOfATill = 500; // closings looked through for the one after
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
                   { title: t("startBalance"), isNumber: true, isSpare: true, cell: ({ start }) => money(start) },
                   { title: t("sold"), isNumber: true, cell: ({ total }) => money(total) },
                   { title: t("endBalance"), isNumber: true, isSpare: true, cell: ({ end }) => money(end) },
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

/** A closing with the one before it at its till and the one after. */
async function readChain(path: string, signal: AbortSignal): Promise<Chain> {
  const closing = await get<ClosingAnswer>(path, signal);
  const { closings } = await get<{ closings: ClosingLine[] }>(`/closings${query({ till: closing.till, from: closing.day, limit: kMostOfATill })}`, signal);
  const later = closings.filter((one) => one.closing > closing.closing);
  return {
    closing,
    before: closing.previous ? await get<ClosingLine>(at`/closings/${closing.previous}`, signal) : undefined,
    after: later.reduce<ClosingLine | undefined>((first, one) => (first && first.closing < one.closing ? first : one), undefined),
  };
}

export function ClosingPage({ number }: { number: string }) {
  const asked = useLoaded<Chain>(at`/closings/${number}`, readChain);
  return (
    <>
      <div class="row">
        <h1>{t("closingNumber", { number })}</h1>
        <span class="gap" />
        <a class="button" href={at`/print/closing/${number}`} target="_blank" rel="noopener">{t("print")}</a>
      </div>
      <Show asked={asked}>{(chain) => <Closing {...chain} />}</Show>
    </>
  );
}

function Closing({ closing, before, after }: Chain) {
  const { start, end } = closing;
  const isWhole = !closing.isBroken && (!before || cents(before.end) === cents(start));
  const shares = (items: Share[], label: string) => (
    <Table label={label} items={items}
           columns={[
             { title: t("name"), cell: ({ name, code }: Share) => name || code },
             { title: t("amount"), isNumber: true, cell: ({ total }: Share) => money(total) },
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
          {before ? <a href={href`/closing/${before.closing}`}>{t("closingNumber", { number: before.closing })}</a> : <span>{t("firstClosing")}</span>}
          {before && <b>{money(before.end)}</b>}
        </li>
        <li class={isWhole ? "here" : "here bad"}>
          <span class="soft">{t("till")} {closing.till} · {day(closing.day)}</span>
          <span>{t("startBalance")} <b>{money(start)}</b></span>
          <span>{t("endBalance")} <b>{money(end)}</b></span>
        </li>
        <li>
          <span class="soft">{t("closingAfter")}</span>
          {after ? <a href={href`/closing/${after.closing}`}>{t("closingNumber", { number: after.closing })}</a> : <span>{t("lastClosing")}</span>}
          {after && <b>{money(after.start)}</b>}
        </li>
      </ol>
      {!isWhole && before && <p class="note bad" role="alert">{t("chainBroken", { before: money(before.end), start: money(start) })}</p>}
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
