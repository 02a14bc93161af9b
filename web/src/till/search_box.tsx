// SPDX-License-Identifier: MIT
// The field in which a code is scanned or an article is searched while one types.
import { useEffect, useRef, useState } from "preact/hooks";
import { get, query, RequestError } from "../shared/api.ts";
import { fromNumber, kOne, read } from "../shared/money.ts";
import { money, noted, plain, serverAway, session } from "../shared/session.ts";
import { knownArticles, learn } from "./known.ts";
import { type Article, splitQuantity } from "./sale.ts";
import { addArticle, complain, lookUpInTurn, lookUps, moveSelection, removeLine, say, scan, selected } from "./state.ts";
import { t } from "./texts.ts";

const kPause = 40;  // ms after the last key before it is asked
const kMost = 12;   // results
const kHaste = 300; // ms within which a second Enter is not meant as "pay"

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
    if (!(error instanceof RequestError)) throw error;
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
  const lastEnter = useRef(0);
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
  // What was entered is looked up one after the other, and the field is free for the next at once. A code
  // that is exactly this goes first, as a scanner means it; then the first that the search finds.
  const lookUp = async (typed: string, answer: Promise<Article[]> | undefined) => {
    try {
      if (await scanned(typed)) return;
      const { quantity, rest: wanted } = splitQuantity(typed, (number) => read(number, session.get().locale));
      const first = (await (answer ?? search(wanted, new AbortController().signal)))[0];
      if (first) {
        addArticle(first, quantity);
        return;
      }
      say(t("notFound", { text: wanted }), "bad");
      setText((now) => now || typed); // to be mended, if nothing was typed since
    } catch (error) {
      complain(error);
    }
  };
  const enter = (field: HTMLInputElement) => {
    const typed = field.value;
    const now = performance.now();
    const isHasty = now - lastEnter.current < kHaste;
    lastEnter.current = now;
    if (splitQuantity(typed, (number) => read(number, session.get().locale)).rest === "") {
      if (lookUps === 0 && !isHasty) pay();
      return;
    }
    const marked = found.articles[chosen];
    if (wasMoved.current && marked) {
      take(marked);
      return;
    }
    // A search that runs for this very text is waited for, and not given up.
    const own = running.current?.text === rest ? running.current.answer : undefined;
    if (own) running.current = undefined;
    lookUpInTurn(() => lookUp(typed, own));
    clear();
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
      case "Enter": enter(event.currentTarget); break;
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
