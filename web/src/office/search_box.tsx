// SPDX-License-Identifier: MIT
// Looks everywhere at once: customers, articles, suppliers, tickets by their number, lists by their name.
import { useEffect, useRef, useState } from "preact/hooks";
import { get, RequestError } from "../shared/api.ts";
import type { ClassLine } from "./model.ts";
import { type Found, kKinds, searchPath, useSettled, type What } from "./pages/find_page.tsx";
import { go, href } from "./routes.ts";
import { t } from "./texts.ts";
import { money } from "./values.ts";

interface Hit {
  group: string;
  text: string;
  detail: string;
  address: string;
}

const kMostOfAKind = 6;

async function partners(what: What, text: string, signal: AbortSignal): Promise<Hit[]> {
  const found = await get<Found>(searchPath(what, text, kMostOfAKind), signal).catch(ignoreMissing);
  const { page, title } = kKinds[what];
  if (what === "articles") {
    return (found.articles ?? []).map(({ code, description, price }) =>
      ({ group: t(title), text: description, detail: `${code} · ${money(price)}`, address: href`/article/${code}` }));
  }
  return (found[what] ?? []).map(({ code, name, place }) =>
    ({ group: t(title), text: name || code, detail: [code, place].filter(Boolean).join(" · "), address: href`/${page}/${code}` }));
}

/** What somebody may not see, or the server does not have, is nothing found. */
function ignoreMissing(error: unknown): Found {
  if (error instanceof RequestError && error.status >= 400 && error.status < 500) return {};
  throw error;
}

const plain = (text: string): string => text.normalize("NFD").replace(/\p{M}/gu, "").toLowerCase();

export function SearchBox({ classes }: { classes: ClassLine[] }) {
  const [text, setText] = useState("");
  const [hits, setHits] = useState<Hit[] | undefined>();
  const [active, setActive] = useState(0);
  const [isOpen, setOpen] = useState(false);
  const box = useRef<HTMLInputElement>(null);
  const settled = useSettled(text.trim());
  const isAwaited = useRef(false); // Enter was pressed before the answer was there
  const shownFor = useRef(""); // what the hits were looked for

  useEffect(() => {
    if (settled === "") return setHits(undefined);
    const request = new AbortController();
    const number = /^\d{1,9}$/.test(settled)
      ? [{ group: t("tickets"), text: t("ticketNumber", { number: settled }), detail: "", address: href`/ticket/${settled}` }] : [];
    const lists = classes.filter(({ name, title }) => plain(`${title} ${name}`).includes(plain(settled))).slice(0, kMostOfAKind)
      .map(({ name, title }) => ({ group: t("lists"), text: title, detail: name, address: href`/list/${name}` }));
    void Promise.allSettled((["customers", "articles", "suppliers"] as const).map((what) => partners(what, settled, request.signal)))
      .then((answers) => {
        if (request.signal.aborted) return;
        const found = answers.flatMap((answer) => (answer.status === "fulfilled" ? answer.value : []));
        const all = [...found, ...number, ...lists];
        shownFor.current = settled;
        setHits(all);
        setActive(0);
        if (isAwaited.current) choose(all[0]);
      });
    return () => request.abort();
  }, [settled, classes]);

  useEffect(() => {
    const pressed = (event: KeyboardEvent): void => {
      if ((event.ctrlKey || event.metaKey) && event.key.toLowerCase() === "k") {
        event.preventDefault();
        box.current?.focus();
        box.current?.select();
      }
    };
    addEventListener("keydown", pressed);
    return () => removeEventListener("keydown", pressed);
  }, []);

  function choose(hit: Hit | undefined): void {
    isAwaited.current = false;
    if (!hit) return;
    setOpen(false);
    setText("");
    box.current?.blur(); // the keyboard goes to the page that opens
    go(hit.address);
  }

  function pressed(event: KeyboardEvent): void {
    if (event.key === "Enter" && text.trim() !== "" && (!hits || settled !== text.trim() || shownFor.current !== settled)) {
      isAwaited.current = true;
      event.preventDefault();
      return;
    }
    if (!hits || !isOpen) return;
    if (event.key === "ArrowDown") setActive(Math.min(hits.length - 1, active + 1));
    else if (event.key === "ArrowUp") setActive(Math.max(0, active - 1));
    else if (event.key === "Enter") choose(hits[active]);
    else if (event.key === "Escape") setOpen(false);
    else return;
    event.preventDefault();
    event.stopPropagation();
  }

  const isShown = isOpen && hits !== undefined && text.trim() !== "";
  return (
    <div class="search" role="search" onFocusOut={(event) => {
      if (!event.currentTarget.contains(event.relatedTarget as Node | null)) setOpen(false);
    }}>
      <input ref={box} class="input" type="search" autocomplete="off" value={text} placeholder={t("searchEverywhere")}
             role="combobox" list={undefined} aria-label={t("searchEverywhere")} aria-expanded={isShown} aria-controls="search-hits"
             aria-autocomplete="list" aria-activedescendant={isShown && hits.length > 0 ? `hit-${active}` : undefined}
             onInput={(event) => { setText(event.currentTarget.value); setOpen(true); isAwaited.current = false; }}
             onFocus={() => setOpen(true)} onKeyDown={pressed} />
      <div class="hits" id="search-hits" role="listbox" aria-label={t("found")} hidden={!isShown || hits.length === 0}>
        {isShown && hits.map((hit, index) => (
          <div key={hit.address} id={`hit-${index}`} role="option" aria-selected={index === active}
               class={`hit${hits[index - 1]?.group === hit.group ? "" : " first"}`}
               onMouseDown={(event) => event.preventDefault()} onClick={() => choose(hit)}>
            <span class="hit-group">{hits[index - 1]?.group === hit.group ? "" : hit.group}</span>
            <span class="hit-text">{hit.text}</span>
            <span class="soft">{hit.detail}</span>
          </div>
        ))}
      </div>
      {isShown && hits.length === 0 && <div class="hits nothing" role="status">{t("nothingFound")}</div>}
    </div>
  );
}
