// SPDX-License-Identifier: MIT
// Tickets by their day, till or customer, and one of them with its lines.
import { useState } from "preact/hooks";
import { at, query } from "../../shared/api.ts";
import { Show, useAsked } from "../load.tsx";
import { PeriodFields } from "../period.tsx";
import { go, href } from "../routes.ts";
import { session } from "../../shared/session.ts";
import { Facts, Figure, Part, Table, type TableColumn } from "../table.tsx";
import { t } from "../texts.ts";
import { day, money, quantity } from "../values.ts";
import { useSettled } from "./find_page.tsx";

export interface TicketLine {
  number: number;
  day: string;
  time?: string;
  till: string;
  customer?: string;
  name?: string;
  payment?: string;
  total: number;
  closing?: number | null;
}
interface SoldLine {
  line: number;
  code: string;
  description: string;
  quantity: number;
  price: number;
  discount?: number;
  tax?: number;
  amount: number;
  returned?: number;
}
interface TicketAnswer extends TicketLine {
  lines: SoldLine[];
  parts?: { payment: string; amount: number }[];
  returns?: { number: number; total?: number }[];
  returnOf?: number | null;
  comments?: string[];
}

const kPage = 100;

export function TicketTable({ tickets, withoutName }: { tickets: TicketLine[]; withoutName?: boolean }) {
  const columns: TableColumn<TicketLine>[] = [
    { title: t("number"), cell: ({ number }) => <a href={href`/ticket/${number}`}>{number}</a> },
    { title: t("day"), cell: (one) => day(one.day) },
    { title: t("time"), isSpare: true, cell: ({ time }) => time },
    { title: t("till"), isSpare: true, cell: ({ till }) => till },
    ...(withoutName ? [] : [{ title: t("customer"), cell: ({ customer, name }: TicketLine) =>
      (customer ? <a href={href`/customer/${customer}`}>{name || customer}</a> : name) }]),
    { title: t("total"), isNumber: true, cell: ({ total }) => money(total) },
  ];
  return <Table label={t("tickets")} columns={columns} items={tickets} empty={t("noTickets")} />;
}

export function TicketsPage({ search }: { search: URLSearchParams }) {
  const { today, tills } = session.get();
  const first = search.get("day") ?? today;
  const [period, setPeriod] = useState({ from: first, to: first });
  const [till, setTill] = useState(search.get("till") ?? "");
  const [text, setText] = useState("");
  const [offset, setOffset] = useState(0);
  const settled = useSettled(text.trim());
  const asked = useAsked<{ tickets: TicketLine[]; total: number }>(`/tickets${query({
    from: period.from || undefined, to: period.to || undefined, till: till || undefined,
    q: settled || undefined, offset, limit: kPage,
  })}`);
  return (
    <>
      <h1>{t("tickets")}</h1>
      <form class="row" onSubmit={(event) => {
        event.preventDefault();
        if (/^\d+$/.test(text.trim())) go(href`/ticket/${text.trim()}`);
      }}>
        <label class="row"><span class="label">{t("ticketOrText")}</span>
          <input class="input narrow-wide" type="search" value={text} autocomplete="off"
                 onInput={(event) => { setText(event.currentTarget.value); setOffset(0); }} />
        </label>
        <label class="row"><span class="label">{t("till")}</span>
          <select class="input" value={till} onChange={(event) => { setTill(event.currentTarget.value); setOffset(0); }}>
            <option value="">{t("allTills")}</option>
            {tills.map(({ code, name }) => <option key={code} value={code}>{`${code} ${name}`}</option>)}
          </select>
        </label>
        <PeriodFields period={period} setPeriod={(wanted) => { setPeriod(wanted); setOffset(0); }} />
      </form>
      <Show asked={asked}>
        {({ tickets, total }) => (
          <>
            <TicketTable tickets={tickets} />
            {total > kPage && (
              <div class="row">
                <button type="button" class="button" disabled={offset === 0} onClick={() => setOffset(Math.max(0, offset - kPage))}>‹ {t("previous")}</button>
                <span role="status">{t("fromToOf", { from: quantity(offset + 1), to: quantity(offset + tickets.length), total: quantity(total) })}</span>
                <button type="button" class="button" disabled={offset + kPage >= total} onClick={() => setOffset(offset + kPage)}>{t("next")} ›</button>
              </div>
            )}
          </>
        )}
      </Show>
    </>
  );
}

export function TicketPage({ number }: { number: string }) {
  const asked = useAsked<TicketAnswer>(at`/tickets/${number}`);
  const paper = at`/print/ticket/${number}`;
  return (
    <>
      <div class="row">
        <h1>{t("ticketNumber", { number })}</h1>
        <span class="gap" />
        <a class="button" href={`${paper}?paper=80`} target="_blank" rel="noopener">{t("printReceipt")}</a>
        <a class="button" href={`${paper}?paper=a4`} target="_blank" rel="noopener">{t("printInvoice")}</a>
      </div>
      <Show asked={asked}>{(ticket) => <Ticket ticket={ticket} />}</Show>
    </>
  );
}

function Ticket({ ticket }: { ticket: TicketAnswer }) {
  const { lines, parts = [], returns = [], returnOf } = ticket;
  const columns: TableColumn<SoldLine>[] = [
    { title: t("code"), isSpare: true, cell: ({ code }) => <a href={href`/article/${code}`}>{code}</a> },
    { title: t("description"), cell: ({ code, description }) => description || code },
    { title: t("quantity"), isNumber: true, cell: (line) => quantity(line.quantity) },
    { title: t("price"), isNumber: true, cell: ({ price }) => money(price) },
    { title: t("discount"), isNumber: true, isSpare: true, cell: ({ discount }) => (discount ? `${quantity(discount)} %` : "") },
    { title: t("tax"), isNumber: true, isSpare: true, cell: ({ tax }) => (tax === undefined ? "" : `${quantity(tax)} %`) },
    { title: t("amount"), isNumber: true, cell: ({ amount }) => money(amount) },
    ...(lines.some(({ returned }) => returned) ? [{ title: t("returned"), isNumber: true, cell: ({ returned }: SoldLine) => (returned ? quantity(returned) : "") }] : []),
  ];
  return (
    <>
      <div class="figures">
        <Figure name={t("total")} value={money(ticket.total)} kind="main" />
        <Figure name={t("day")} value={`${day(ticket.day)} ${ticket.time ?? ""}`.trim()} />
        <Figure name={t("till")} value={ticket.till} />
      </div>
      <Facts facts={[
        [t("customer"), ticket.customer ? <a href={href`/customer/${ticket.customer}`}>{ticket.name || ticket.customer}</a> : ticket.name ?? ""],
        [t("payment"), parts.length > 0 ? parts.map(({ payment, amount }) => `${paymentName(payment)} ${money(amount)}`).join(" · ") : paymentName(ticket.payment)],
        [t("closing"), ticket.closing ? <a href={href`/closing/${ticket.closing}`}>{ticket.closing}</a> : t("notClosedYet")],
        [t("returnOf"), returnOf ? <a href={href`/ticket/${returnOf}`}>{returnOf}</a> : ""],
        [t("comment"), (ticket.comments ?? []).join(" · ")],
      ]} />
      <Part title={t("lines")}><Table label={t("lines")} columns={columns} items={lines} /></Part>
      {returns.length > 0 && (
        <Part title={t("returns")}>
          <ul class="chips">{returns.map((one) => <li key={one.number}><a class="chip" href={href`/ticket/${one.number}`}>{t("ticketNumber", { number: one.number })}</a></li>)}</ul>
        </Part>
      )}
    </>
  );
}

const paymentName = (code: string | undefined): string =>
  session.get().payments.find((one) => one.code === code)?.name ?? code ?? "";
