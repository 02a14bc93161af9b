// SPDX-License-Identifier: MIT
// The end of a till's day: the cash is counted piece by piece, and the difference kept with the closing.
import { useEffect, useRef, useState } from "preact/hooks";
import { at, get, post, query, RequestError } from "../shared/api.ts";
import { Dialog } from "../shared/dialog.tsx";
import { type Fixed, fromNumber, read, toCents, toNumber } from "../shared/money.ts";
import { dayText, loadSession, may, money, plain, session } from "../shared/session.ts";
import { useStore } from "../shared/store.ts";
import { draft } from "./draft.ts";
import { waiting } from "./outbox.ts";
import { print } from "./print.ts";
import { complain, till, tillName } from "./state.ts";
import { t } from "./texts.ts";

interface Day {
  tickets: number;
  total: number;
  payments: { code: string; name: string; total: number; isCash: boolean }[];
  opening: number;
  expected: number;
}
interface Closing {
  closing: number;
  total: number;
  expected: number;
  counted: number;
  difference: number;
  slip: string[];
  wasThere?: boolean;
}

// Notes and coins, in ten-thousandths of a euro.
const kPieces: Fixed[] = [200n, 100n, 50n, 20n, 10n, 5n, 2n, 1n].map((euros) => euros * 10_000n)
  .concat([50n, 20n, 10n, 5n, 2n, 1n].map((cents) => cents * 100n));

export function ClosingDialog({ close }: { close: () => unknown }) {
  const { locale, today } = useStore(session);
  const [chosenDay, setDay] = useState("");
  const day = chosenDay || today; // yesterday's, where nobody closed it
  const entries = useStore(waiting);
  const { lines } = useStore(draft);
  const [figures, setFigures] = useState<Day | null>(null);
  const [pieces, setPieces] = useState<Record<string, string>>({});
  const [sum, setSum] = useState("");
  const [fault, setFault] = useState("");
  const [done, setDone] = useState<Closing | null>(null);
  const isSending = useRef(false);
  const asked = useRef("");
  const load = () => {
    asked.current = day;
    get<Day>(`${at`/tills/${till.get()}/day`}${query({ day })}`)
      .then((answer) => asked.current === day && setFigures(answer)).catch(complain);
  };
  useEffect(load, [day]);
  // A page that is open since yesterday knows yesterday's day.
  useEffect(() => void loadSession(), []);

  const hasPieces = Object.values(pieces).some((text) => text !== "");
  const ofPieces = kPieces.reduce((all, piece) => all + piece * BigInt(/^\d{1,6}$/.test(pieces[String(piece)] ?? "") ? pieces[String(piece)]! : "0"), 0n);
  const typed = sum.trim() === "" ? undefined : read(sum, locale);
  const counted = hasPieces ? ofPieces : typed;
  const expected = figures ? fromNumber(figures.expected) : 0n;
  const hinder = entries.length > 0 ? t("outboxFirst") : lines.length > 0 ? t("draftFirst") : "";

  const enter = async (event: Event) => {
    event.preventDefault();
    if (isSending.current || hinder !== "") return;
    if (counted === undefined || counted < 0n) return setFault(t("notANumber"));
    isSending.current = true;
    try {
      setDone(await post<Closing>("/closings", { till: till.get(), day, counted: toNumber(toCents(counted)), tickets: figures?.tickets }));
    } catch (error) {
      if (error instanceof RequestError && error.isAway) setFault(t("pending"));
      else if (error instanceof RequestError && error.status !== 401) setFault(error.message);
      if (error instanceof RequestError && error.status === 409) load(); // tickets came after the count
      complain(error);
    } finally {
      isSending.current = false;
    }
  };

  if (done) {
    return (
      <Dialog key="done" title={t(done.wasThere ? "wasClosed" : "closed", { number: done.closing })} close={close} closeText={t("close")}
        footer={<button type="button" class="button main" data-first onClick={() => print(`/print/closing/${done.closing}`)}>{t("print")}</button>}>
        <Sums expected={fromNumber(done.expected)} counted={fromNumber(done.counted)} />
        <pre class="slip" tabIndex={0} role="region" aria-label={t("closed", { number: done.closing })}>{done.slip.join("\n")}</pre>
      </Dialog>
    );
  }
  return (
    <Dialog title={`${t("closingTitle", { till: tillName() })} · ${dayText(day)}`} close={close} closeText={t("cancel")}>
      <label class="field">
        <span>{t("day")}</span>
        <input class="input" type="date" max={today} value={day} onInput={(event) => {
          setFigures(null);
          setFault("");
          setDay(event.currentTarget.value);
        }} />
      </label>
      {figures && (
        <section aria-label={t("total")}>
          <p class="line"><span>{t("tickets")}</span> <span class="number">{figures.tickets}</span></p>
          {figures.payments.map((payment) => <p key={payment.code} class="line"><span>{payment.name}</span> <span class="number">{money(fromNumber(payment.total))}</span></p>)}
          <p class="line"><span>{t("opening")}</span> <span class="number">{money(fromNumber(figures.opening))}</span></p>
          {figures.tickets === 0 && <p class="note">{t("nothingToClose")}</p>}
        </section>
      )}
      <form class="stack" onSubmit={(event) => void enter(event)}>
        <fieldset class="pieces">
          <legend class="label">{t("counting")}</legend>
          {kPieces.map((piece, index) => (
            <label key={piece}>
              <span class="number">{money(piece)}</span>
              <input class="input short number" data-first={index === 0 ? true : undefined} inputMode="numeric" autocomplete="off" maxLength={6} placeholder="0"
                aria-label={t("pieces", { value: money(piece) })} value={pieces[String(piece)] ?? ""}
                onInput={(event) => setPieces({ ...pieces, [String(piece)]: event.currentTarget.value.replace(/\D/g, "") })} />
            </label>
          ))}
        </fieldset>
        <label class="field">
          <span>{t("counted")}</span>
          <input class="input big number" inputMode="decimal" autocomplete="off" maxLength={16} disabled={hasPieces}
            value={hasPieces ? plain(ofPieces, 2) : sum} onInput={(event) => setSum(event.currentTarget.value)} />
        </label>
        {figures && counted !== undefined && <Sums expected={expected} counted={counted} />}
        <p role="alert" class={fault + hinder === "" ? "" : "note bad"}>{fault || hinder}</p>
        <button type="submit" class="button main large" disabled={!figures || hinder !== "" || !may("till.close")}>{t("closeNow")} <kbd>Enter</kbd></button>
      </form>
    </Dialog>
  );
}

function Sums({ expected, counted }: { expected: Fixed; counted: Fixed }) {
  return (
    <section aria-live="polite" aria-label={t("difference")}>
      <p class="line"><span>{t("expected")}</span> <span class="number">{money(expected)}</span></p>
      <p class="line"><span>{t("counted")}</span> <span class="number">{money(counted)}</span></p>
      <p class={`line change ${counted === expected ? "" : "fault"}`}><span>{t("difference")}</span> <b class="number">{money(counted - expected)}</b></p>
    </section>
  );
}
