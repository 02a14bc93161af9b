// SPDX-License-Identifier: MIT
// The field in which a code is scanned or an article is searched while one types.
import { useEffect, useRef, useState } from "preact/hooks";
import { get, query, RequestError } from "../shared/api.ts";
import { fromNumber, kOne, read } from "../shared/money.ts";
import { money, noted, plain, serverAway, session } from "../shared/session.ts";
import { knownArticles, learn } from "./known.ts";
import { type Article, splitQuantity } from "./sale.ts";
import { addArticle, complain, moveSelection, removeLine, say, scan, selected } from "./state.ts";
import { t } from "./texts.ts";

const kPause = 40;  // ms after the last key before it is asked
const kMost = 12;   // results

interface Found {
  text: string;  // what was asked
  articles: Article[];
}

/** Puts the article in whose code this is, as often as a prefix says. */
export async function scanned(text: string): Promise<boolean> {
  const { quantity, rest } = splitQuantity(text, (number) => read(number, session.get().locale));
  try {
    const found = await scan(rest);
    if (found) addArticle(found.article, found.quantity ? (quantity * fromNumber(found.quantity)) / kOne : quantity);
    return found !== undefined;
  } catch (error) {
    complain(error);
    return true; // it was told
  }
}

async function search(text: string, signal: AbortSignal): Promise<Article[]> {
  try {
    const { articles } = await get<{ articles: Article[] }>(`/articles/search${query({ q: text, most: kMost })}`, signal);
    serverAway.set(false);
    articles.forEach((article) => learn(article));
    return articles;
  } catch (error) {
    if (signal.aborted || !(error instanceof RequestError)) throw error;
    if (!error.isAway && error.status !== 401) throw error;
    noted(error);
    return knownArticles(text, kMost);
  }
}

/** Times of each search from the answer to the frame that shows it, ms: for who measures. */
export const searchTimes: number[] = [];

export function SearchBox({ pay }: { pay: () => void }) {
  const [text, setText] = useState("");
  const [found, setFound] = useState<Found>({ text: "", articles: [] });
  const [chosen, setChosen] = useState(0);
  const wasMoved = useRef(false);
  const running = useRef<{ text: string; answer: Promise<Article[]>; abort: AbortController } | undefined>(undefined);
  const timer = useRef<ReturnType<typeof setTimeout> | undefined>(undefined);
  const isBusy = useRef(false);
  const { rest } = splitQuantity(text, (number) => read(number, session.get().locale));
  const isOpen = rest !== "" && found.text !== "" && found.articles.length > 0;

  const clear = () => {
    clearTimeout(timer.current);
    running.current?.abort.abort();
    running.current = undefined;
    setText("");
    setFound({ text: "", articles: [] });
    setChosen(0);
    wasMoved.current = false;
  };
  // Only the answer to what stands there now is shown; an earlier one that comes late is dropped.
  const start = (wanted: string): Promise<Article[]> => {
    if (running.current?.text === wanted) return running.current.answer;
    running.current?.abort.abort();
    const abort = new AbortController();
    const answer = search(wanted, abort.signal);
    running.current = { text: wanted, answer, abort };
    answer.then((articles) => {
      if (running.current?.answer !== answer) return;
      const came = performance.now();
      setFound({ text: wanted, articles });
      setChosen(0);
      wasMoved.current = false;
      requestAnimationFrame(() => setTimeout(() => searchTimes.push(performance.now() - came)));
    }).catch((error: unknown) => {
      if (running.current?.answer === answer) running.current = undefined;
      if (!abort.signal.aborted) complain(error);
    });
    return answer;
  };
  useEffect(() => {
    clearTimeout(timer.current);
    if (rest === "") {
      running.current?.abort.abort();
      running.current = undefined;
      setFound({ text: "", articles: [] });
    } else {
      timer.current = setTimeout(() => void start(rest).catch(() => undefined), kPause);
    }
  }, [rest]);

  const take = (article: Article) => {
    addArticle(article, splitQuantity(text, (number) => read(number, session.get().locale)).quantity);
    clear();
  };
  // A code that is exactly this goes first, as a scanner means it; then the first that was found.
  const enter = async (field: HTMLInputElement) => {
    const typed = field.value;
    const parts = splitQuantity(typed, (number) => read(number, session.get().locale));
    if (parts.rest === "") {
      pay();
      return;
    }
    if (isBusy.current) return;
    const marked = found.articles[chosen];
    if (wasMoved.current && marked) {
      take(marked);
      return;
    }
    isBusy.current = true;
    try {
      if (await scanned(typed)) {
        if (field.value === typed) clear(); // what was typed on meanwhile stays
        return;
      }
      const first = (await start(parts.rest))[0];
      if (first) {
        addArticle(first, parts.quantity);
        if (field.value === typed) clear();
      } else {
        say(t("notFound", { text: parts.rest }), "bad");
        field.select();
      }
    } catch (error) {
      if (!(error instanceof DOMException)) complain(error);
    } finally {
      isBusy.current = false;
    }
  };
  const move = (by: number) => {
    const next = (chosen + by + found.articles.length) % found.articles.length;
    setChosen(next);
    wasMoved.current = true;
    document.getElementById(`found-${next}`)?.scrollIntoView({ block: "nearest" });
  };
  const key = (event: KeyboardEvent & { currentTarget: HTMLInputElement }) => {
    const isEmpty = event.currentTarget.value === "";
    switch (event.key) {
      case "Enter": void enter(event.currentTarget); break;
      case "ArrowDown": isOpen ? move(1) : moveSelection(1); break;
      case "ArrowUp": isOpen ? move(-1) : moveSelection(-1); break;
      case "Escape": clear(); break;
      case "Delete": if (!isEmpty) return; removeLine(selected.get()); break;
      default: return;
    }
    event.preventDefault();
  };

  return (
    <div class="search">
      <label class="unseen" for="search">{t("search")}</label>
      <input id="search" class="input" type="text" role="combobox" autocomplete="off" spellcheck={false}
        placeholder={t("search")} aria-describedby="search-hint" aria-expanded={isOpen} aria-controls="found"
        aria-autocomplete="list" aria-activedescendant={isOpen ? `found-${chosen}` : undefined} maxLength={80}
        value={text} onInput={(event) => setText(event.currentTarget.value)} onKeyDown={key} />
      <span id="search-hint" class="unseen">{t("searchHint")}</span>
      <ul id="found" class="found" role="listbox" aria-label={t("found", { count: found.articles.length })} hidden={!isOpen}>
        {found.articles.map((article, index) => (
          <li key={article.code} id={`found-${index}`} role="option" aria-selected={index === chosen}
            onMouseDown={(event) => event.preventDefault()} onClick={() => {
              take(article);
              document.getElementById("search")?.focus();
            }}>
            <span class="code">{article.code}</span>
            <span class="name">{article.description}</span>
            <span class="soft stock">{article.stock === undefined ? "" : t("stock", { stock: plain(fromNumber(article.stock)) })}</span>
            <span class="number">{money(fromNumber(article.price))}</span>
          </li>
        ))}
      </ul>
    </div>
  );
}
