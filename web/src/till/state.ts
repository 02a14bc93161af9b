// SPDX-License-Identifier: MIT
// What the parts of the till have in common: which till it is, the sale, its prices, what was said last.
import { at, get, post, RequestError } from "../shared/api.ts";
import { type Fixed, fromNumber } from "../shared/money.ts";
import { money, noted, plain, serverAway, session, signedOut } from "../shared/session.ts";
import { store } from "../shared/store.ts";
import { draft } from "./draft.ts";
import { knownScan, learn } from "./known.ts";
import { type Article, asQuestion, changed, type Draft, kEmpty, type Line, type Quoted, without, withArticle, withQuote } from "./sale.ts";
import { t } from "./texts.ts";

const kPlace = "tavelor.till";

/** Which till this browser is; "" until it is chosen. */
export const till = store(localStorage.getItem(kPlace) ?? "");
export function chooseTill(code: string): void {
  localStorage.setItem(kPlace, code);
  till.set(code);
}

/** The line that the keys mean; "" for none. */
export const selected = store("");
export const selectedLine = (): Line | undefined => draft.get().lines.find(({ id }) => id === selected.get());

/** What is said to who looks and to who listens. */
export const message = store<{ text: string; kind: "" | "bad" | "good" }>({ text: "", kind: "" });
export const say = (text: string, kind: "" | "bad" | "good" = ""): void => message.set({ text, kind });

/** What a failed request is told as: a cut line and a missing PIN have their own place on the page. */
export function complain(error: unknown): void {
  if (noted(error)) return;
  if (!(error instanceof RequestError)) throw error;
  say(t("failed", { message: error.message }), "bad");
}

export function addArticle(article: Article, quantity: Fixed): void {
  const next = withArticle(draft.get(), article, quantity);
  draft.set(next.draft);
  selected.set(next.line);
  say(t("added", { name: article.description, quantity: plain(quantity), price: money(fromNumber(article.price)) }));
}

export const setLine = (id: string, values: Partial<Line>): void => draft.update((before) => changed(before, id, values));

export function removeLine(id: string): void {
  const { lines } = draft.get();
  const index = lines.findIndex((line) => line.id === id);
  if (index < 0) return;
  selected.set((lines[index + 1] ?? lines[index - 1])?.id ?? "");
  say(t("removed", { name: lines[index]!.description }));
  draft.update((before) => without(before, id));
}

export function moveSelection(by: number): void {
  const { lines } = draft.get();
  const index = lines.findIndex(({ id }) => id === selected.get());
  const line = lines[Math.max(0, Math.min(lines.length - 1, index < 0 ? lines.length - 1 : index + by))];
  if (!line) return;
  selected.set(line.id);
  say(`${line.description}, ${plain(line.quantity)}, ${money(line.price)}`);
}

export function startAnew(with_: Draft = kEmpty): void {
  draft.set(with_);
  selected.set(with_.lines[with_.lines.length - 1]?.id ?? "");
}

/** While an answer is waited for that changes the sale, no key and no scanner may change it. */
export const busy = store(false);

/** What was entered and is looked up still. Who pays waits for it, or it would come into the next sale. */
let lookingUp: Promise<void> = Promise.resolve();
export let lookUps = 0;
export function lookUpInTurn(lookUp: () => Promise<void>): void {
  lookUps += 1;
  lookingUp = lookingUp.then(lookUp).catch((error: unknown) => console.error(error)).finally(() => (lookUps -= 1));
}
export const lookedUp = (): Promise<void> => lookingUp;

/** The article of a code or a barcode, from the server, or from what is known while that is away. */
export async function scan(text: string): Promise<{ article: Article; quantity?: number } | undefined> {
  try {
    const answer = await get<{ article: Article; quantity?: number }>(at`/articles/scan/${text}`);
    serverAway.set(false);
    learn(answer.article, text);
    return answer;
  } catch (error) {
    if (error instanceof RequestError && error.status === 404) return undefined;
    if (error instanceof RequestError && (error.isAway || error.status === 401)) {
      noted(error);
      const article = knownScan(text);
      return article && { article };
    }
    throw error;
  }
}

// Which prices are asked for: those of the shop change with the customer, and not with the quantity.
const question = (of: Draft): string => JSON.stringify([till.get(), of.customer?.code ?? "",
  of.lines.map((line) => ({ ...asQuestion(line), quantity: 1 }))]);
let answered = "";
let isAsking = false;

/** Asks for the shop's prices of all lines, until the answer is one to the sale as it is now. */
export async function quote(): Promise<void> {
  if (isAsking) return;
  isAsking = true;
  try {
    for (let asked = question(draft.get()); asked !== answered; asked = question(draft.get())) {
      const { lines, customer } = draft.get();
      if (lines.length === 0 || till.get() === "") break;
      const { lines: quoted } = await post<{ lines: Quoted[] }>("/till/quote", {
        till: till.get(), customer: customer?.code ?? "", lines: lines.map(asQuestion),
      });
      serverAway.set(false);
      if (asked !== question(draft.get())) continue; // too late: it is another question now
      draft.update((before) => ({ ...before, lines: before.lines.map((line, index) =>
        (quoted[index] ? { ...line, ...withQuote(line, quoted[index]) } : line)) }));
      answered = question(draft.get());
    }
  } catch (error) {
    if (!(error instanceof RequestError)) throw error;
    if (error.isAway) serverAway.set(true);
    else if (!noted(error)) markFaults(error);
  } finally {
    isAsking = false;
  }
}

/** What the server says of lines, at the lines; the rest where it is seen. */
export function markFaults(error: { faults: { line?: number; reason: string }[]; message: string }): void {
  draft.update((before) => ({ ...before, lines: before.lines.map((line, index) =>
    ({ ...line, fault: error.faults.find((fault) => fault.line === index + 1)?.reason ?? "" })) }));
  say(t("failed", { message: error.message }), "bad");
}

export function watchPrices(): void {
  draft.watch(() => void quote());
  till.watch(() => void quote());
  // What was sold at known prices meanwhile is asked again when the line is back or somebody has signed in.
  signedOut.watch((isOut) => !isOut && void quote());
  serverAway.watch((isAway) => !isAway && void quote());
  void quote();
}

/** While the server is away it is asked now and then whether it is back. */
export function watchServer(ask: () => Promise<void>): void {
  setInterval(() => serverAway.get() && void ask(), 3_000);
}

export const tillName = (): string => session.get().tills.find(({ code }) => code === till.get())?.name ?? till.get();
