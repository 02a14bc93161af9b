// SPDX-License-Identifier: MIT
// The sales that the server does not have yet, and what it has said of them.
import { Dialog } from "../shared/dialog.tsx";
import { money } from "../shared/session.ts";
import { useStore } from "../shared/store.ts";
import { draft } from "./draft.ts";
import { sendSoon, takeOut, ticketOf, type Waiting, waiting } from "./outbox.ts";
import { complain, markFaults, say, startAnew } from "./state.ts";
import { t } from "./texts.ts";

export function OutboxDialog({ close }: { close: () => unknown }) {
  const entries = useStore(waiting);
  const mend = async (entry: Waiting) => {
    if (draft.get().lines.length > 0) {
      say(t("finishFirst"), "bad");
      return;
    }
    const out = await takeOut(entry.key);
    if (!out) {
      say(t("mendGone"), "bad");
      return;
    }
    startAnew(out.draft);
    markFaults({ faults: out.faults, message: out.said });
    close();
  };
  // Only what the server has not: a refusal may have been of a second try.
  const giveUp = async (entry: Waiting) => {
    try {
      const ticket = await ticketOf(entry.key);
      if (ticket === undefined && !confirm(t("giveUpSure", { total: money(entry.total) }))) return;
      await takeOut(entry.key);
      if (ticket !== undefined) say(t("wasSold", { number: ticket }), "good");
    } catch (error) {
      complain(error);
    }
  };
  return (
    <Dialog title={t("outboxTitle")} close={close} closeText={t("close")}
      footer={entries.some(({ isRefused }) => !isRefused) && <button type="button" class="button main" data-first onClick={() => sendSoon(0)}>{t("sendNow")}</button>}>
      {entries.length === 0 && <p class="note good">{t("outboxEmpty")}</p>}
      <ul class="list">
        {entries.map((entry) => (
          <li key={entry.key} class={entry.isRefused ? "note bad" : "note"}>
            <p class="line">
              <b>{t(entry.isRefused ? "refused" : "waitingOne")}</b>
              <span>{new Date(entry.at).toTimeString().slice(0, 5)} · {t("lineCount", { count: entry.draft.lines.length })}</span>
              <b class="number">{money(entry.total)}</b>
            </p>
            <p>{entry.said || t("saidNothing")}</p>
            {entry.faults.length > 0 && <ul>{entry.faults.map((fault, index) => <li key={index}>{fault.line ? `${fault.line}, ${fault.code ?? ""}: ` : ""}{fault.reason}</li>)}</ul>}
            {entry.isRefused && (
              <div class="row">
                <button type="button" class="button" onClick={() => void mend(entry)}>{t("mend")}</button>
                <button type="button" class="button bad" onClick={() => void giveUp(entry)}>{t("giveUp")}</button>
              </div>
            )}
          </li>
        ))}
      </ul>
    </Dialog>
  );
}
