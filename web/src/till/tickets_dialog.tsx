// SPDX-License-Identifier: MIT
// Tickets by their number, to be printed again or given back.
import { useEffect, useRef, useState } from "preact/hooks";
import { ask, at, get, query, RequestError } from "../shared/api.ts";
import { Dialog } from "../shared/dialog.tsx";
import { type Fixed, fromNumber, read, toNumber } from "../shared/money.ts";
import { dayText, may, money, plain, session } from "../shared/session.ts";
import { print, printsAlways } from "./print.ts";
import { busy, complain, say, till } from "./state.ts";
import { t } from "./texts.ts";

interface Listed {
  number: number;
  day: string;
  time: string;
  name?: string;
  total: number;
}
interface TicketLine {
  line: number;
  code: string;
  description: string;
  quantity: number;
  price: number;
  discount: number;
  amount: number;
  returned: number;
}
interface Ticket extends Listed {
  payment: string;
  lines: TicketLine[];
  returns: { number: number }[];
  returnOf?: number | null;
}

export function TicketsDialog({ close }: { close: () => unknown }) {
  const [text, setText] = useState("");
  const [list, setList] = useState<Listed[]>([]);
  const [isListed, setListed] = useState(false);
  const [ticket, setTicket] = useState<Ticket | null>(null);
  useEffect(() => {
    get<{ tickets: Listed[] }>(`/tickets${query({ day: session.get().today, till: till.get(), limit: 50 })}`)
      .then(({ tickets }) => {
        setList(tickets);
        setListed(true);
      })
      .catch(complain);
  }, []);
  const open = async (number: string | number) => {
    try {
      setTicket(await get<Ticket>(at`/tickets/${number}`));
    } catch (error) {
      if (error instanceof RequestError && (error.status === 404 || error.status === 400)) say(t("noTicket", { number }), "bad");
      else complain(error);
    }
  };
  if (ticket) return <TicketWindow key={ticket.number} ticket={ticket} again={() => open(ticket.number)} back={() => setTicket(null)} close={close} />;
  return (
    <Dialog title={t("ticketsTitle")} close={close} closeText={t("close")}>
      <form class="row" onSubmit={(event) => {
        event.preventDefault();
        if (text.trim() !== "") void open(text.trim());
      }}>
        <label class="field grow">
          <span>{t("ticketSearch")}</span>
          <input class="input" data-first inputMode="numeric" autocomplete="off" maxLength={20} value={text}
            onInput={(event) => setText(event.currentTarget.value)} />
        </label>
        <button type="submit" class="button main">{t("find")}</button>
      </form>
      <h2>{t("today")}</h2>
      {isListed && list.length === 0 && <p class="note">{t("noTickets")}</p>}
      <ul class="list">
        {list.map((each) => (
          <li key={each.number}>
            <button type="button" class="button wide" onClick={() => void open(each.number)}>
              <b>{each.number}</b> <span class="soft">{each.time}</span> <span class="name">{each.name}</span> <span class="number">{money(fromNumber(each.total))}</span>
            </button>
          </li>
        ))}
      </ul>
    </Dialog>
  );
}

interface WindowProperties {
  ticket: Ticket;
  again: () => Promise<void>;
  back: () => void;
  close: () => unknown;
}

function TicketWindow({ ticket, again, back, close }: WindowProperties) {
  const { payments, locale } = session.get();
  const [wanted, setWanted] = useState<Record<number, string>>({});
  const [payment, setPayment] = useState(ticket.payment);
  const [fault, setFault] = useState("");
  // What is asked of the server, until it has answered: a second press asks for the very same.
  const asked = useRef<unknown>(null);
  const isSending = useRef(false);

  const left = (line: TicketLine): Fixed => fromNumber(line.quantity) - fromNumber(line.returned);
  const chosen = (line: TicketLine): Fixed | undefined => {
    const text = (wanted[line.line] ?? "").trim();
    return text === "" ? 0n : read(text, locale);
  };
  const set = (values: Record<number, string>) => {
    asked.current = null;
    setFault("");
    setWanted({ ...wanted, ...values });
  };
  const giveBack = async (event: Event) => {
    event.preventDefault();
    if (isSending.current) return;
    if (asked.current === null) {
      const lines: { line: number; quantity: number }[] = [];
      for (const line of ticket.lines) {
        const quantity = chosen(line);
        if (quantity === undefined) return setFault(`${line.description}: ${t("notANumber")}`);
        const most = left(line);
        if (quantity < 0n || quantity > most) return setFault(`${line.description}: ${t("returnMost", { most: plain(most) })}`);
        if (quantity !== 0n) lines.push({ line: line.line, quantity: toNumber(quantity) });
      }
      if (lines.length === 0) return;
      asked.current = { ticket: ticket.number, till: till.get(), earlier: ticket.returns.length, payment, lines };
    }
    isSending.current = true;
    busy.set(true);
    try {
      const { body } = await ask<{ ticket: number; total: number; receipt: string }>("POST", "/returns", asked.current);
      asked.current = null;
      say(t("returnDone", { number: body.ticket, total: money(fromNumber(body.total)) }), "good");
      if (printsAlways()) print(body.receipt);
      busy.set(false);
      close();
    } catch (error) {
      if (error instanceof RequestError && error.status === 409) {
        asked.current = null;
        say(t("returnChanged"), "bad");
        await again();
      } else if (error instanceof RequestError && error.isAway) {
        setFault(t("pending"));
        complain(error);
      } else {
        asked.current = null;
        if (error instanceof RequestError && error.status !== 401) setFault(error.message);
        else complain(error);
      }
    } finally {
      busy.set(false);
      isSending.current = false;
    }
  };
  const isReturn = Boolean(ticket.returnOf);
  const mayReturn = may("till.return") && !isReturn && ticket.lines.some((line) => left(line) > 0n);
  return (
    <Dialog title={`${t("ticketNumber", { number: ticket.number })} · ${dayText(ticket.day)} ${ticket.time}`} close={back} closeText={t("close")}>
      <form class="stack" onSubmit={(event) => void giveBack(event)}>
        {isReturn && <p class="note">{t("returnOf", { number: ticket.returnOf ?? "" })}</p>}
        <div class="wide-table" tabIndex={0} role="region" aria-label={t("lines")}>
          <table>
            <thead>
              <tr>
                <th scope="col">{t("article")}</th>
                <th scope="col" class="number">{t("quantity")}</th>
                <th scope="col" class="number">{t("amount")}</th>
                <th scope="col" class="number">{t("returned")}</th>
                {mayReturn && <th scope="col" class="number">{t("giveBack")}</th>}
              </tr>
            </thead>
            <tbody>
              {ticket.lines.map((line, index) => (
                <tr key={line.line}>
                  <th scope="row">{line.description} <span class="soft">{line.code}</span></th>
                  <td class="number">{plain(fromNumber(line.quantity))}</td>
                  <td class="number">{money(fromNumber(line.amount))}</td>
                  <td class="number">{line.returned === 0 ? "" : plain(fromNumber(line.returned))}</td>
                  {mayReturn && (
                    <td class="number">
                      <input class="input short number" inputMode="decimal" autocomplete="off" maxLength={12} disabled={left(line) <= 0n}
                        data-first={index === 0 ? true : undefined} aria-label={t("giveBackOf", { name: line.description })}
                        value={wanted[line.line] ?? ""} placeholder="0" onInput={(event) => set({ [line.line]: event.currentTarget.value })} />
                    </td>
                  )}
                </tr>
              ))}
            </tbody>
          </table>
        </div>
        <p class="line"><span>{t("total")}</span> <b class="number">{money(fromNumber(ticket.total))}</b></p>
        <p role="alert" class={fault === "" ? "" : "note bad"}>{fault}</p>
        {mayReturn && (
          <label class="field">
            <span>{t("payment")}</span>
            <select class="input" value={payment} onChange={(event) => {
              asked.current = null;
              setPayment(event.currentTarget.value);
            }}>
              {payments.map(({ code, name }) => <option key={code} value={code} selected={code === payment}>{name}</option>)}
            </select>
          </label>
        )}
        <div class="row">
          <button type="button" class="button" onClick={() => print(`/print/ticket/${ticket.number}`)}>{t("print")}</button>
          {mayReturn && <button type="button" class="button" onClick={() => set(Object.fromEntries(ticket.lines.map((line) => [line.line, left(line) > 0n ? plain(left(line)) : ""])))}>{t("giveBackAll")}</button>}
          {mayReturn && <button type="submit" class="button main">{t("giveBack")} <kbd>Enter</kbd></button>}
        </div>
      </form>
    </Dialog>
  );
}
