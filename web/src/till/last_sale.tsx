// SPDX-License-Identifier: MIT
// What has just been sold: the change, and the ticket once the server has told it.
import { useState } from "preact/hooks";
import { fromNumber } from "../shared/money.ts";
import { money } from "../shared/session.ts";
import { store, useStore } from "../shared/store.ts";
import { sold, waiting } from "./outbox.ts";
import { print, printsAlways, setPrintsAlways } from "./print.ts";
import { say } from "./state.ts";
import { t } from "./texts.ts";

export interface LastSale {
  key: string;
  total: bigint;
  change: bigint;
  ticket: number;   // 0 before the server has told it
  receipt: string;  // the address of its page
}

export const lastSale = store<LastSale | null>(null);

export function printLast(): void {
  const last = lastSale.get();
  if (last && last.receipt !== "") print(last.receipt);
}

export function watchSales(): void {
  sold.watch((news) => {
    const last = lastSale.get();
    if (!news || !last || last.key !== news.key || last.ticket !== 0) return;
    lastSale.set({ ...last, ticket: news.ticket, receipt: news.receipt });
    say(t("soldAs", { number: news.ticket, change: money(last.change) }), "good");
    if (fromNumber(news.total) !== last.total) say(t("failed", { message: `${money(last.total)} ≠ ${money(fromNumber(news.total))}` }), "bad");
    if (printsAlways()) printLast();
  });
}

export function LastSalePanel() {
  const last = useStore(lastSale);
  const entries = useStore(waiting);
  const [always, setAlways] = useState(printsAlways());
  if (!last) return null;
  const entry = entries.find(({ key }) => key === last.key);
  const state = last.ticket !== 0 ? t("ticketNumber", { number: last.ticket })
    : entry?.isRefused ? t("refused") : entry && entry.said === "" ? t("sending") : t("waits");
  return (
    <section class="last" aria-label={t("lastSale")}>
      <p class="line"><span>{t("lastSale")}</span> <span class="number">{money(last.total)}</span></p>
      <p class="line change"><span>{t("change")}</span> <b class="number">{money(last.change)}</b></p>
      <p class={`line ${entry?.isRefused ? "fault" : "soft"}`}>{state}</p>
      <div class="row">
        <button type="button" class="button" disabled={last.receipt === ""} onClick={printLast}>{t("print")} <kbd>Ctrl P</kbd></button>
        <label class="row small"><input type="checkbox" checked={always} onChange={(event) => {
          setPrintsAlways(event.currentTarget.checked);
          setAlways(event.currentTarget.checked);
        }} /> {t("printAlways")}</label>
      </div>
    </section>
  );
}
