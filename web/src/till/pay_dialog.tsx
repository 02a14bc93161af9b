// SPDX-License-Identifier: MIT
// How the sale is paid: by one method, or in parts by several.
import { useRef, useState } from "preact/hooks";
import { Dialog } from "../shared/dialog.tsx";
import { type Fixed, kOne, read, toCents } from "../shared/money.ts";
import { may, money, plain, serverAway, session } from "../shared/session.ts";
import { useStore } from "../shared/store.ts";
import { draft, draftPlace, written } from "./draft.ts";
import { putIn } from "./outbox.ts";
import { type Part, saleBody, sums } from "./sale.ts";
import { lastSale } from "./last_sale.tsx";
import { say, startAnew, till } from "./state.ts";
import { NumberPad } from "./numbers.tsx";
import { t } from "./texts.ts";

const kNotes = [5n, 10n, 20n, 50n, 100n];
const kMostChange = 500n * kOne; // less than the largest note

export function PayDialog({ close }: { close: () => unknown }) {
  const { payments, locale } = useStore(session);
  const isAway = useStore(serverAway);
  const { customer, lines } = useStore(draft);
  const { total } = sums(lines);
  const isBack = total < 0n; // money is given back
  const [method, setMethod] = useState(payments.find(({ isCash }) => isCash)?.code ?? payments[0]?.code ?? "");
  const [text, setText] = useState("");
  const [parts, setParts] = useState<Part[]>([]);
  const [isGranted, setGranted] = useState(false);
  const [fault, setFault] = useState("");
  const isSelling = useRef(false);
  const field = useRef<HTMLInputElement>(null);
  const payment = payments.find(({ code }) => code === method);
  const rest = total - parts.reduce((sum, { amount }) => sum + amount, 0n);
  const typed = text.trim() === "" ? rest : read(text, locale);
  const change = payment?.isCash && typed !== undefined && typed > rest && !isBack ? typed - rest : 0n;

  const sell = async (all: Part[], delivered: Fixed, back: Fixed) => {
    if (isSelling.current) return;
    isSelling.current = true;
    try {
      const sale = draft.get();
      await written();
      await putIn({
        key: sale.key, at: Date.now(), draft: sale, total, isRefused: false, said: "", faults: [],
        body: saleBody(sale, till.get(), all, delivered, isGranted),
      }, draftPlace());
      lastSale.set({ key: sale.key, total, change: back, ticket: 0, receipt: "" });
      startAnew();
      close();
    } catch (error) {
      isSelling.current = false;
      setFault(t("notStored", { message: error instanceof Error ? error.message : String(error) }));
    }
  };
  const enter = (event: Event) => {
    event.preventDefault();
    if (isSelling.current || !payment || lines.length === 0) return;
    const wrong = (said: string) => {
      setFault(said);
      field.current?.focus();
    };
    if (typed === undefined) return wrong(t("notANumber"));
    if (payment.isOnCredit && !customer) return wrong(t("creditNeedsCustomer"));
    if (payment.isOnCredit && isAway) return wrong(t("creditNeedsServer"));
    const amount = toCents(typed);
    if (isBack || amount === rest) return void sell([...parts, { payment: method, amount: rest }], isBack ? 0n : handed(amount), 0n);
    if (amount <= 0n) return wrong(t("notPositive"));
    if (amount > rest && !payment.isCash) return wrong(t("tooMuch"));
    // A code that a scanner typed here, say: nobody gets so much change.
    if (amount > rest + kMostChange) return wrong(t("tooMuch"));
    if (amount > rest) return void sell([...parts, { payment: method, amount: rest }], handed(amount), amount - rest);
    setParts([...parts, { payment: method, amount }]);
    setText("");
    setFault("");
    say(`${t("rest")}: ${money(rest - amount)}`);
    field.current?.focus();
  };
  // What was put on the counter: the cash of all parts, or the only payment.
  const handed = (last: Fixed): Fixed => {
    const isCashOf = (code: string) => payments.find((each) => each.code === code)?.isCash ?? false;
    const before = parts.filter((part) => isCashOf(part.payment)).reduce((sum, { amount }) => sum + amount, 0n);
    return before + (payment?.isCash || parts.length === 0 ? last : 0n);
  };

  return (
    <Dialog title={t("payTitle", { total: money(total) })} close={close} closeText={t("cancel")} className="pay">
      <form class="stack" onSubmit={enter}>
        <fieldset class="methods">
          <legend class="label">{t("payment")}</legend>
          {payments.map(({ code, name, isOnCredit }, index) => (
            <label key={code} class="choice">
              <input type="radio" name="payment" value={code} checked={code === method}
                onChange={() => {
                  setMethod(code);
                  setFault("");
                }} />
              <span><kbd>{index + 1}</kbd> {name}{isOnCredit && customer ? ` · ${customer.name}` : ""}</span>
            </label>
          ))}
        </fieldset>
        {parts.length > 0 && (
          <div>
            <h2 class="label">{t("parts")}</h2>
            <ul class="parts">
              {parts.map((part, index) => (
                <li key={index}>
                  <span>{payments.find(({ code }) => code === part.payment)?.name}</span>
                  <span class="number">{money(part.amount)}</span>
                  <button type="button" class="button step bad" aria-label={t("removePart", { amount: money(part.amount) })}
                    onClick={() => setParts(parts.filter((_, other) => other !== index))}>×</button>
                </li>
              ))}
            </ul>
          </div>
        )}
        <div class="halves">
          <div class="stack">
            <label class="field">
              <span>{t(payment?.isCash ? "delivered" : "amount")}</span>
              <input ref={field} class="input big" data-first inputMode="decimal" autocomplete="off" maxLength={16} value={text}
                placeholder={plain(toCents(rest), 2)} aria-invalid={fault !== ""} disabled={isBack}
                onKeyDown={(event) => {
                  // Alt and a digit choose the method without leaving the field.
                  const wanted = event.altKey ? payments[Number(event.key) - 1] : undefined;
                  const by = event.key === "ArrowDown" ? 1 : event.key === "ArrowUp" ? -1 : 0;
                  const index = payments.findIndex(({ code }) => code === method);
                  const next = wanted ?? (by === 0 ? undefined : payments[(index + by + payments.length) % payments.length]);
                  if (!next) return;
                  event.preventDefault();
                  setMethod(next.code);
                  setFault("");
                  say(next.name);
                }}
                onInput={(event) => setText(event.currentTarget.value)} />
            </label>
            {payment?.isCash && !isBack && (
              <div class="row notes">
                {kNotes.filter((note) => note * kOne >= rest).slice(0, 4).map((note) => (
                  <button key={note} type="button" class="button" tabIndex={-1} onClick={() => setText(plain(note * kOne))}>{String(note)} {locale.currency}</button>
                ))}
                <button type="button" class="button" tabIndex={-1} onClick={() => setText("")}>{t("exact")}</button>
              </div>
            )}
            {parts.length > 0 && <p class="line"><span>{t("rest")}</span> <b class="number">{money(rest)}</b></p>}
            <p class="line change" aria-live="polite"><span>{t("change")}</span> <b class="number">{money(change)}</b></p>
          </div>
          <NumberPad value={text} set={setText} />
        </div>
        {payment?.isOnCredit && may("till.credit") && (
          <label class="row"><input type="checkbox" checked={isGranted} onChange={(event) => setGranted(event.currentTarget.checked)} /> {t("grantCredit")}</label>
        )}
        <p role="alert" class={fault === "" ? "" : "note bad"}>{fault}</p>
        <button type="submit" class="button main large">{t(typed !== undefined && typed < rest && !isBack ? "addPart" : "pay")} <kbd>Enter</kbd></button>
      </form>
    </Dialog>
  );
}
