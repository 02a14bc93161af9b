// SPDX-License-Identifier: MIT
// The till's page: head, search, lines, sums and what can be done, with one window over it at most.
import type { ComponentChildren } from "preact";
import { useEffect, useLayoutEffect, useState } from "preact/hooks";
import { Dialog } from "../shared/dialog.tsx";
import { scanner, shortcuts } from "../shared/keyboard.ts";
import { may, money, plain, serverAway, session, signedOut, signOut } from "../shared/session.ts";
import { SignIn } from "../shared/sign_in.tsx";
import { useStore } from "../shared/store.ts";
import { currentLanguage, setLanguage } from "../shared/texts.ts";
import { ClosingDialog } from "./closing_dialog.tsx";
import { CustomerDialog } from "./customer_dialog.tsx";
import { draft } from "./draft.ts";
import { HeldDialog, HoldDialog } from "./held_dialog.tsx";
import { LastSalePanel, printLast } from "./last_sale.tsx";
import { LineList } from "./line_list.tsx";
import { NumberDialog } from "./numbers.tsx";
import { OutboxDialog } from "./outbox_dialog.tsx";
import { waiting } from "./outbox.ts";
import { PayDialog } from "./pay_dialog.tsx";
import { sums } from "./sale.ts";
import { scanned, SearchBox } from "./search_box.tsx";
import { busy, chooseTill, complain, lookedUp, lookUpInTurn, lookUps, message, say, selectedLine, setLine, till, tillName } from "./state.ts";
import { t } from "./texts.ts";
import { TicketsDialog } from "./tickets_dialog.tsx";

type Window = "" | "pay" | "customer" | "quantity" | "price" | "discount" | "hold" | "held" | "tickets" | "closing" | "outbox" | "keys" | "till";

const focusSearch = () => document.getElementById("search")?.focus();

export function App() {
  const { shop, employee, tills } = useStore(session);
  const isOut = useStore(signedOut);
  const isAway = useStore(serverAway);
  const entries = useStore(waiting);
  const said = useStore(message);
  const sale = useStore(draft);
  const here = useStore(till);
  const [window, setWindow] = useState<Window>("");
  const { total, surcharge } = sums(sale.lines);
  const hasLines = sale.lines.length > 0;
  const hasTill = tills.some(({ code }) => code === here);
  const close = () => busy.get() || setWindow("");

  useEffect(() => {
    document.title = `${t("till")} ${tillName()} · ${shop.name}`;
  }, [here, shop]);
  useLayoutEffect(() => {
    if (window === "" && !isOut) focusSearch();
  }, [window, isOut, hasTill]);
  useEffect(() => {
    const only = tills.length === 1 ? tills[0] : undefined;
    if (!hasTill && only) chooseTill(only.code);
  }, [tills, here]);

  const open = (wanted: Window, right = "") => () => {
    if (signedOut.get() || busy.get()) return;
    if ((wanted === "pay" || wanted === "hold") && lookUps > 0) {
      void lookedUp().then(open(wanted, right));
      return;
    }
    if (right !== "" && !may(right)) {
      say(t("noRight"), "bad");
      return;
    }
    const needsLine = wanted === "quantity" || wanted === "price" || wanted === "discount";
    if (needsLine && !selectedLine()) return;
    if ((wanted === "pay" || wanted === "hold") && draft.get().lines.length === 0) {
      say(t("nothingToPay"));
      return;
    }
    setWindow(wanted);
  };
  // Shown on the buttons in this order, each with its key.
  const actions: { key: string; shown: string; text: Parameters<typeof t>[0]; run: () => void; isOff?: boolean }[] = [
    { key: "F3", shown: "F3", text: "customer", run: open("customer") },
    { key: "F4", shown: "F4", text: "quantity", run: open("quantity"), isOff: !hasLines },
    { key: "F6", shown: "F6", text: "price", run: open("price", "till.price"), isOff: !hasLines || !may("till.price") },
    { key: "F7", shown: "F7", text: "discount", run: open("discount", "till.discount"), isOff: !hasLines || !may("till.discount") },
    { key: "F8", shown: "F8", text: "hold", run: open("hold"), isOff: !hasLines },
    { key: "F9", shown: "F9", text: "held", run: open("held") },
    { key: "F10", shown: "F10", text: "tickets", run: open("tickets") },
    { key: "Control+F10", shown: "Ctrl F10", text: "closing", run: open("closing", "till.close"), isOff: !may("till.close") },
  ];
  const leave = () => {
    signOut().catch(complain);
  };
  useEffect(() => shortcuts(() => {
    if (signedOut.get()) return {};
    const other: Record<string, () => void> = {
      "F1": open("keys"), "F2": () => {
        close();
        focusSearch();
      },
      "F12": open("pay"), "Control+Enter": open("pay"), "Control+p": printLast, "Control+F9": open("outbox"), "Control+F12": leave,
    };
    for (const action of actions) other[action.key] = action.run;
    return other;
  }));
  useEffect(() => scanner((text) => {
    if (busy.get()) return;
    setWindow((now) => (now === "pay" ? "" : now)); // the sum is another one
    lookUpInTurn(async () => void ((await scanned(text)) || say(t("notFound", { text }), "bad")));
  }, (target) => !signedOut.get() && !(target instanceof HTMLElement && target.id === "search")), []);

  const waitingCount = entries.filter(({ isRefused }) => !isRefused).length;
  const refusedCount = entries.length - waitingCount;
  return (
    <>
      <header class="head">
        <h1>{shop.name || "Tavelor"} {hasTill && <span class="soft">· {tillName()}</span>}</h1>
        <div class="row">
          {waitingCount + refusedCount > 0 && (
            <button type="button" class={`button ${refusedCount > 0 ? "bad" : ""}`} onClick={open("outbox")}>
              {waitingCount > 0 && t("waitingCount", { count: waitingCount })} {refusedCount > 0 && t("refusedCount", { count: refusedCount })} <kbd>Ctrl F9</kbd>
            </button>
          )}
          <button type="button" class="button" onClick={open("keys")}>{t("keys")} <kbd>F1</kbd></button>
          <button type="button" class="button" onClick={leave}><span class="name">{employee?.name}</span> {t("signOut")}</button>
        </div>
      </header>
      {isAway && <p class="note warn bar" role="status">{t("away")}</p>}
      <main class="sale">
        <SearchBox pay={open("pay")} />
        <LineList />
        <p class={`said ${said.text === "" ? "" : `note ${said.kind}`}`} role={said.kind === "bad" ? "alert" : "status"}>{said.text}</p>
      </main>
      <aside class="side" aria-label={t("total")}>
        {sale.customer && <p class="note customer"><b>{sale.customer.name}</b> <span class="code">{sale.customer.code}</span></p>}
        {!hasLines && <LastSalePanel />}
        <div class="sum" aria-live="polite">
          {surcharge !== 0n && <p class="line soft"><span>{t("surcharge")}</span> <span class="number">{money(surcharge)}</span></p>}
          <p class="line soft"><span>{t("total")}</span> <span>{t("lineCount", { count: sale.lines.length })}</span></p>
          <p class="total number" id="total">{money(total)}</p>
        </div>
        <button type="button" class="button main large" id="pay" disabled={!hasLines} onClick={open("pay")}>{t("pay")} <kbd>F12</kbd></button>
        <div class="actions">
          {actions.map((action) => (
            <button key={action.key} type="button" class="button" disabled={action.isOff} onClick={action.run}>{t(action.text)} <kbd>{action.shown}</kbd></button>
          ))}
        </div>
      </aside>
      {window === "pay" && <PayDialog close={close} />}
      {window === "customer" && <CustomerDialog close={close} />}
      {window === "hold" && <HoldDialog close={close} />}
      {window === "held" && <HeldDialog close={close} />}
      {window === "tickets" && <TicketsDialog close={close} />}
      {window === "closing" && <ClosingDialog close={close} />}
      {window === "outbox" && <OutboxDialog close={close} />}
      {window === "keys" && <KeysDialog actions={actions} close={close} changeTill={() => setWindow("till")} />}
      {(window === "quantity" || window === "price" || window === "discount") && <LineDialog what={window} close={close} />}
      {!isOut && (window === "till" || !hasTill) && <TillDialog close={close} mayClose={hasTill} />}
      {isOut && <SignIn />}
    </>
  );
}

function LineDialog({ what, close }: { what: "quantity" | "price" | "discount"; close: () => unknown }) {
  const line = selectedLine();
  if (!line) return null;
  return (
    <NumberDialog title={line.description} label={t(what)} start={plain(line[what], what === "price" ? 2 : 0)} close={close}
      accept={(value) => {
        if (what === "quantity" && value === 0n) return t("notPositive");
        if (what === "price" && value <= 0n) return t("notPositive");
        if (what === "discount" && (value < 0n || value > 1_000_000n)) return t("notANumber");
        setLine(line.id, { [what]: value, fault: "", ...(what === "price" ? { hasOwnPrice: true } : {}), ...(what === "discount" ? { hasOwnDiscount: true } : {}) });
        return "";
      }} />
  );
}

function TillDialog({ close, mayClose }: { close: () => unknown; mayClose: boolean }) {
  const { tills } = useStore(session);
  return (
    <Dialog title={t("chooseTill")} className="narrow" {...(mayClose ? { close, closeText: t("cancel") } : {})}>
      {tills.length === 0 && <p class="note warn">{t("noTills")}</p>}
      <ul class="list">
        {tills.map(({ code, name }, index) => (
          <li key={code}>
            <button type="button" class="button wide" data-first={index === 0 ? true : undefined} onClick={() => {
              chooseTill(code);
              close();
            }}><b>{code}</b> <span class="name">{name}</span></button>
          </li>
        ))}
      </ul>
    </Dialog>
  );
}

interface KeysProperties {
  actions: { shown: string; text: Parameters<typeof t>[0] }[];
  close: () => unknown;
  changeTill: () => void;
}

function KeysDialog({ actions, close, changeTill }: KeysProperties) {
  const rows: [string, ComponentChildren][] = [
    ["F2", t("focusSearch")], ...actions.map(({ shown, text }): [string, ComponentChildren] => [shown, t(text)]),
    ["F12", t("pay")], ["Ctrl P", t("print")], ["Ctrl F9", t("outboxTitle")], ["Ctrl F12", t("signOut")],
  ];
  return (
    <Dialog title={t("keysTitle")} close={close} closeText={t("close")}>
      <p>{t("keysText")}</p>
      <dl class="keys">{rows.map(([key, text]) => <div key={key}><dt><kbd>{key}</kbd></dt><dd>{text}</dd></div>)}</dl>
      <div class="row">
        <label class="field">
          <span>{t("language")}</span>
          <select class="input" value={currentLanguage()} onChange={(event) => {
            setLanguage(event.currentTarget.value, true);
            session.update((before) => ({ ...before })); // all is drawn again
          }}>
            <option value="es" selected={currentLanguage() === "es"}>Español</option>
            <option value="en" selected={currentLanguage() === "en"}>English</option>
          </select>
        </label>
        <button type="button" class="button" onClick={changeTill}>{t("changeTill")}</button>
      </div>
    </Dialog>
  );
}
