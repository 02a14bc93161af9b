// SPDX-License-Identifier: MIT
// Sales that wait for their customer: put away under a name, and taken back at any till.
import { useEffect, useState } from "preact/hooks";
import { at, get, post, RequestError } from "../shared/api.ts";
import { Dialog } from "../shared/dialog.tsx";
import { fromNumber, toNumber } from "../shared/money.ts";
import { useStore } from "../shared/store.ts";
import { draft, written } from "./draft.ts";
import { type Customer, type Draft, kEmpty, type Line } from "./sale.ts";
import { busy, complain, say, startAnew, till } from "./state.ts";
import { t } from "./texts.ts";

type HeldLine = { [Name in keyof Line]: Line[Name] extends bigint ? number : Line[Name] };
interface HeldSale {
  key: string;
  till: string;
  label: string;
  customer: string;
  customerData?: Customer | null;
  comment?: string;
  lines: HeldLine[];
}
interface HeldEntry {
  id: number | string;
  label: string;
  till: string;
  time?: string;
}

// The one that was asked for last. Its answer may have been lost: whoever took it may ask again.
const kTaking = "tavelor.taking";

const kNumbers = ["quantity", "price", "discount", "tax", "surcharge"] as const;

const asHeld = (line: Line): HeldLine => ({ ...line, ...Object.fromEntries(kNumbers.map((name) => [name, toNumber(line[name])])) }) as unknown as HeldLine;
const asLine = (line: HeldLine): Line => ({ ...line, ...Object.fromEntries(kNumbers.map((name) => [name, fromNumber(line[name])])) }) as unknown as Line;

export function HoldDialog({ close }: { close: () => unknown }) {
  const { customer } = useStore(draft);
  const [label, setLabel] = useState(customer?.name ?? "");
  const hold = async (event: Event) => {
    event.preventDefault();
    if (busy.get()) return;
    busy.set(true);
    const sale = draft.get();
    try {
      // By the sale's key: the same one held twice is held once.
      await post("/held", {
        key: sale.key, till: till.get(), label, customer: sale.customer?.code ?? "", customerData: sale.customer,
        comment: sale.comment, lines: sale.lines.map(asHeld),
      });
      startAnew();
      say(t("heldDone", { label }), "good");
      busy.set(false);
      close();
    } catch (error) {
      busy.set(false);
      complain(error);
    }
  };
  return (
    <Dialog title={t("hold")} close={close} closeText={t("cancel")} className="narrow">
      <form class="stack" onSubmit={(event) => void hold(event)}>
        <label class="field">
          <span>{t("heldLabel")}</span>
          <input class="input" data-first maxLength={50} value={label} onInput={(event) => setLabel(event.currentTarget.value)} />
        </label>
        <button type="submit" class="button main">{t("hold")} <kbd>Enter</kbd></button>
      </form>
    </Dialog>
  );
}

export function HeldDialog({ close }: { close: () => unknown }) {
  const [entries, setEntries] = useState<HeldEntry[] | null>(null);
  const load = () => get<{ held: HeldEntry[] }>("/held").then(({ held }) => {
    const taking = localStorage.getItem(kTaking);
    const isLost = taking !== null && !held.some(({ id }) => String(id) === taking);
    setEntries(isLost ? [{ id: taking, label: t("lostTake"), till: "" }, ...held] : held);
  }).catch(complain);
  useEffect(() => void load(), []);
  const take = async (entry: HeldEntry) => {
    if (busy.get()) return;
    if (draft.get().lines.length > 0) {
      say(t("finishFirst"), "bad");
      return;
    }
    busy.set(true);
    localStorage.setItem(kTaking, String(entry.id));
    try {
      const sale = await post<HeldSale>(at`/held/${entry.id}/take`, {});
      const back: Draft = { ...kEmpty, key: sale.key, customer: sale.customerData ?? null, comment: sale.comment ?? "", lines: sale.lines.map(asLine) };
      startAnew(back);
      await written();
      localStorage.removeItem(kTaking);
      busy.set(false);
      close();
    } catch (error) {
      busy.set(false);
      if (error instanceof RequestError && (error.status === 409 || error.status === 404)) {
        localStorage.removeItem(kTaking);
        say(t("heldGone"), "bad");
        await load();
      } else {
        complain(error);
      }
    }
  };
  return (
    <Dialog title={t("heldTitle")} close={close} closeText={t("close")}>
      {entries?.length === 0 && <p class="note">{t("noHeld")}</p>}
      <ul class="list">
        {entries?.map((entry, index) => (
          <li key={entry.id}>
            <button type="button" class="button wide" data-first={index === 0 ? true : undefined} onClick={() => void take(entry)}>
              <span class="name">{entry.label || entry.id}</span> <span class="soft">{entry.till} {entry.time}</span> <span>{t("take")}</span>
            </button>
          </li>
        ))}
      </ul>
    </Dialog>
  );
}
