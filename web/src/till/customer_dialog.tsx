// SPDX-License-Identifier: MIT
// For whom the sale is: searched while one types, with the account of who is chosen.
import { useEffect, useState } from "preact/hooks";
import { at, get, query } from "../shared/api.ts";
import { Dialog } from "../shared/dialog.tsx";
import { fromNumber } from "../shared/money.ts";
import { money, session } from "../shared/session.ts";
import { draft } from "./draft.ts";
import type { Customer } from "./sale.ts";
import { complain } from "./state.ts";
import { t } from "./texts.ts";

interface Account {
  balance: number;
  limit: number | null;
  blocked: boolean;
  active: boolean;
}

const kPause = 80; // ms

export function CustomerDialog({ close }: { close: () => unknown }) {
  const [text, setText] = useState("");
  const [found, setFound] = useState<Customer[]>([]);
  const [chosen, setChosen] = useState(0);
  const [answered, setAnswered] = useState("");
  const [account, setAccount] = useState<Account | null>(null);
  const [tariff, setTariff] = useState("");
  const customer = found[chosen];

  useEffect(() => {
    const abort = new AbortController();
    const timer = setTimeout(() => {
      if (text.trim() === "") {
        setFound([]);
        return;
      }
      get<{ customers: Customer[] }>(`/customers/search${query({ q: text.trim(), most: 20 })}`, abort.signal)
        .then(({ customers }) => {
          setFound(customers);
          setChosen(0);
          setAnswered(text.trim());
        })
        .catch((error: unknown) => abort.signal.aborted || complain(error));
    }, kPause);
    return () => {
      clearTimeout(timer);
      abort.abort();
    };
  }, [text]);

  useEffect(() => {
    setAccount(null);
    if (!customer) return undefined;
    const abort = new AbortController();
    get<{ customer: Customer; account: Account }>(at`/customers/${customer.code}`, abort.signal)
      .then((answer) => {
        setAccount(answer.account);
        setTariff(answer.customer.tariff ?? "");
      })
      .catch((error: unknown) => abort.signal.aborted || complain(error));
    return () => abort.abort();
  }, [customer?.code]);

  const choose = (who: Customer | null) => {
    // Other prices for another customer: until the shop has told them, the lines' are those of before.
    draft.update((before) => ({ ...before, customer: who, lines: before.lines.map((line) => ({ ...line, isKnown: false })) }));
    close();
  };
  const key = (event: KeyboardEvent) => {
    const by = event.key === "ArrowDown" ? 1 : event.key === "ArrowUp" ? -1 : 0;
    if (by === 0 || found.length === 0) return;
    event.preventDefault();
    const next = (chosen + by + found.length) % found.length;
    setChosen(next);
    document.getElementById(`customer-${next}`)?.scrollIntoView({ block: "nearest" });
  };
  const tariffName = session.get().tariffs.find((each) => each.code === tariff)?.name ?? tariff;

  return (
    <Dialog title={t("customerTitle")} close={close} closeText={t("cancel")}>
      <form class="stack" onSubmit={(event) => {
        event.preventDefault();
        if (customer && answered === text.trim()) choose(customer);
      }}>
        <label class="field">
          <span>{t("customerSearch")}</span>
          <input class="input" data-first role="combobox" autocomplete="off" spellcheck={false} maxLength={80}
            aria-expanded={found.length > 0} aria-controls="customers" aria-autocomplete="list"
            aria-activedescendant={customer ? `customer-${chosen}` : undefined}
            value={text} onInput={(event) => setText(event.currentTarget.value)} onKeyDown={key} />
        </label>
        <ul id="customers" class="list" role="listbox" aria-label={t("customer")} hidden={found.length === 0}>
          {found.map((each, index) => (
            <li key={each.code} id={`customer-${index}`} role="option" aria-selected={index === chosen} onClick={() => setChosen(index)}>
              <span class="code">{each.code}</span> <span class="name">{each.name}</span> <span class="soft">{each.place}</span>
            </li>
          ))}
        </ul>
        {found.length === 0 && answered !== "" && answered === text.trim() && <p class="note">{t("nobodyFound", { text: answered })}</p>}
        {customer && (
          <section class="note" aria-live="polite" aria-label={t("account")}>
            <p><b>{customer.name}</b> {customer.fiscalNumber}{account && tariffName !== "" ? ` · ${t("tariff", { tariff: tariffName })}` : ""}</p>
            {account && <p>{t("balance")} {money(fromNumber(account.balance))} · {t("limit")} {account.limit === null ? t("noLimit") : money(fromNumber(account.limit))}</p>}
            {account?.blocked && <p class="fault">{t("blocked")}</p>}
            {account && !account.active && <p class="fault">{t("inactive")}</p>}
          </section>
        )}
        <div class="row">
          <button type="submit" class="button main" disabled={!customer || answered !== text.trim()}>{t("choose")} <kbd>Enter</kbd></button>
          <button type="button" class="button" onClick={() => choose(null)}>{t("noCustomer")}</button>
        </div>
      </form>
    </Dialog>
  );
}
