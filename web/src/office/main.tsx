// SPDX-License-Identifier: MIT
// The back office: what is around every page, and which page an address shows.
import "../shared/base.css";
import "./office.css";
import { render } from "preact";
import { useEffect, useRef, useState } from "preact/hooks";
import { Dialog } from "../shared/dialog.tsx";
import { ask } from "../shared/api.ts";
import { loadSession, may, serverAway, session, signedOut, signOut } from "../shared/session.ts";
import { SignIn } from "../shared/sign_in.tsx";
import { useStore } from "../shared/store.ts";
import { currentLanguage, setLanguage } from "../shared/texts.ts";
import { FormPage } from "./form/form_page.tsx";
import { ListPage } from "./list/list_page.tsx";
import { reasonOf, Show, useAsked } from "./load.tsx";
import type { ClassLine } from "./model.ts";
import { ArticlePage } from "./pages/article_page.tsx";
import { ClosingPage, ClosingsPage } from "./pages/closings_page.tsx";
import { DayPage } from "./pages/day_page.tsx";
import { FindPage } from "./pages/find_page.tsx";
import { PartnerPage } from "./pages/partner_page.tsx";
import { Lists, StartPage } from "./pages/start_page.tsx";
import { TicketPage, TicketsPage } from "./pages/tickets_page.tsx";
import { type Route, useRoute } from "./routes.ts";
import { SearchBox } from "./search_box.tsx";
import { type OfficeText, t } from "./texts.ts";

const kPlaces: { path: string; title: OfficeText }[] = [
  { path: "day", title: "today" },
  { path: "tickets", title: "tickets" },
  { path: "closings", title: "closings" },
  { path: "customers", title: "customers" },
  { path: "suppliers", title: "suppliers" },
  { path: "articles", title: "articles" },
  { path: "lists", title: "lists" },
];
// Under which heading a page of one record stands.
const kPlaceOf: Record<string, string> = {
  ticket: "tickets", closing: "closings", customer: "customers", supplier: "suppliers", article: "articles", list: "lists",
};

// Collections are called by their members and have no list.
const hasRows = ({ hasRows: has }: ClassLine): boolean => has !== false;

function Page({ route, classes }: { route: Route; classes: ClassLine[] }) {
  const [kind = "", name = "", part] = route.path;
  if (kind === "") return <StartPage classes={classes} />;
  if (kind === "day") return <DayPage search={route.query} />;
  if (kind === "tickets") return <TicketsPage key={route.query.toString()} search={route.query} />;
  if (kind === "closings") return <ClosingsPage search={route.query} />;
  if (kind === "customers" || kind === "suppliers" || kind === "articles") return <FindPage key={kind} what={kind} />;
  if (kind === "lists") return <Lists classes={classes} isPage />;
  if (name !== "") {
    if (kind === "ticket") return <TicketPage key={name} number={name} />;
    if (kind === "closing") return <ClosingPage key={name} number={name} />;
    if (kind === "customer" || kind === "supplier") return <PartnerPage key={`${kind} ${name}`} kind={kind} code={name} />;
    if (kind === "article") return <ArticlePage key={name} code={name} />;
    if (kind === "list" && part === "record") {
      const key = route.query.get("key") ?? "";
      return <FormPage key={`${name} ${key}`} name={name} keyText={key} />;
    }
    if (kind === "list" && part === "new") return <FormPage key={`${name} new`} name={name} keyText={undefined} />;
    if (kind === "list") return <ListPage key={name} name={name} search={route.query} />;
  }
  return <p class="note warn">{t("noSuchPage")} <a href="#/">{t("toTheStart")}</a></p>;
}

function Office() {
  const { employee, shop } = useStore(session);
  const route = useRoute();
  const [isOpen, setOpen] = useState(false); // the menu, where it has no room of its own
  const [isPin, setPin] = useState(false);
  const [, setShownLanguage] = useState(currentLanguage());
  const classes = useAsked<ClassLine[]>(may("office.read") ? "/classes" : undefined);
  const content = useRef<HTMLElement>(null);
  const address = route.path.join("/");
  const place = kPlaceOf[route.path[0] ?? ""] ?? route.path[0];
  const isAway = useStore(serverAway);

  useEffect(() => {
    setOpen(false);
    scrollTo(0, 0);
    // The list takes the keyboard by itself; elsewhere it begins with the page, not with the menu.
    requestAnimationFrame(() => {
      const within = content.current?.querySelector<HTMLElement>("[data-first], .grid, input[type=search]");
      const { activeElement } = document;
      const isTyping = activeElement instanceof HTMLInputElement; // somebody was quicker
      if (!isTyping && !content.current?.contains(activeElement)) (within ?? content.current)?.focus({ preventScroll: true });
    });
  }, [address]);
  useEffect(() => {
    document.title = [shop.name, t("office")].filter(Boolean).join(" · ");
  }, [shop.name]);

  const speak = (): void => {
    setLanguage(currentLanguage() === "es" ? "en" : "es", true);
    setShownLanguage(currentLanguage());
  };

  return (
    <>
      <a class="skip button" href="#content" onClick={(event) => { event.preventDefault(); content.current?.focus(); }}>{t("toTheContent")}</a>
      <header class="top">
        <a class="brand" href="#/">{shop.name || t("office")}</a>
        <SearchBox classes={(classes.value ?? []).filter(hasRows)} />
        <button type="button" class="button menu-button" aria-expanded={isOpen} aria-controls="menu" onClick={() => setOpen(!isOpen)}>{t("menu")}</button>
        <div id="menu" class={isOpen ? "menu open" : "menu"}>
          <nav aria-label={t("places")}>
            {kPlaces.map(({ path, title }) => (
              <a key={path} href={`#/${path}`} aria-current={place === path ? "page" : undefined}>{t(title)}</a>
            ))}
            <a href="/till">{t("till")}</a>
          </nav>
          <div class="person">
            <span class="soft">{employee?.name || employee?.code}</span>
            <button type="button" class="link" onClick={() => setPin(true)}>{t("changePin")}</button>
            <button type="button" class="link" lang={currentLanguage() === "es" ? "en" : "es"} onClick={speak}>
              {currentLanguage() === "es" ? "English" : "Español"}
            </button>
            <button type="button" class="link" onClick={() => void signOut()}>{t("signOut")}</button>
          </div>
        </div>
      </header>
      {isAway && <p class="note warn" role="alert">{t("noServer")}</p>}
      <main id="content" ref={content} tabIndex={-1}>
        {may("office.read")
          ? <Show asked={classes}>{(all) => <Page route={route} classes={all.filter(hasRows)} />}</Show>
          : <p class="note warn">{t("noOffice")} <a href="/till">{t("till")}</a></p>}
      </main>
      {isPin && <PinDialog close={() => setPin(false)} />}
    </>
  );
}

function PinDialog({ close }: { close: () => void }) {
  const [old, setOld] = useState("");
  const [fresh, setFresh] = useState("");
  const [again, setAgain] = useState("");
  const [message, setMessage] = useState("");
  const field = (label: OfficeText, value: string, set: (text: string) => void) => (
    <label class="field"><span>{t(label)}</span>
      <input class="input" type="password" inputMode="numeric" autocomplete="off" maxLength={32} value={value}
             onInput={(event) => { set(event.currentTarget.value); setMessage(""); }} />
    </label>
  );
  const change = async (): Promise<void> => {
    if (fresh !== again) return setMessage(t("pinsDiffer"));
    try {
      await ask("POST", "/session/pin", { old, new: fresh });
      close();
    } catch (error) {
      setMessage(reasonOf(error));
    }
  };
  return (
    <Dialog title={t("changePin")} close={close} closeText={t("close")}>
      <form class="stack" onSubmit={(event) => { event.preventDefault(); void change(); }}>
        {field("oldPin", old, setOld)}
        {field("newPin", fresh, setFresh)}
        {field("newPinAgain", again, setAgain)}
        {message && <p class="note bad" role="alert">{message}</p>}
        <button type="submit" class="button main">{t("changePin")}</button>
      </form>
    </Dialog>
  );
}

function App() {
  const isOut = useStore(signedOut);
  const { employee } = useStore(session);
  const isAway = useStore(serverAway);
  // What is on the page stays while somebody whose time has run out signs in again.
  const who = employee?.code;
  const [last, setLast] = useState(who);
  useEffect(() => { if (who) setLast(who); }, [who]);
  return (
    <>
      {(who ?? last) && <Office key={who ?? last} />}
      {isOut && <SignIn />}
      {!who && !last && isAway && <p class="note warn" role="alert">{t("noServer")}</p>}
    </>
  );
}

const page = document.getElementById("page");
if (page) void loadSession().then(() => render(<App />, page));
