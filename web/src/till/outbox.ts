// SPDX-License-Identifier: MIT
// Sales on their way to the server. One lies here from the moment it is paid until the server has told its
// ticket; it is sent again with its own key, by which the server knows it, and so is sold once.
import { ask, get, at, type Fault, RequestError } from "../shared/api.ts";
import { alone, keep, keptAll, keptOne } from "../shared/kept.ts";
import { loadSession, serverAway, signedOut } from "../shared/session.ts";
import { store } from "../shared/store.ts";
import type { Draft, SaleBody } from "./sale.ts";

export interface Waiting {
  key: string;
  at: number;          // when it was paid, ms
  body: SaleBody;
  draft: Draft;        // as it was typed, to be mended
  total: bigint;
  isRefused: boolean;  // it is not sent again before somebody has looked at it
  said: string;        // by the server, last; "" for nothing yet
  faults: Fault[];
}
export interface Sold {
  key: string;
  ticket: number;
  total: number;
  change: number;
  receipt: string;
}

type News = { sold: Sold } | { refused: string } | { changed: true };

const kFirstPause = 1_000;  // ms between tries, doubled up to the longest
const kLongestPause = 20_000;
const channel = "BroadcastChannel" in globalThis ? new BroadcastChannel("tavelor-outbox") : undefined;

/** What waits, the oldest first: in this page and in all others of this browser. */
export const waiting = store<Waiting[]>([]);
/** The sale that was acknowledged last, by whichever page. */
export const sold = store<Sold | null>(null);

let pause = kFirstPause;
let timer: ReturnType<typeof setTimeout> | undefined;
let isSending = false;

function hear(news: News): void {
  if ("sold" in news) sold.set(news.sold);
  void look();
}
function tell(news: News): void {
  channel?.postMessage(news);
  hear(news);
}

async function look(): Promise<void> {
  const all = (await keptAll<Waiting>("outbox")).map(([, entry]) => entry);
  waiting.set(all.sort((one, other) => one.at - other.at));
}

/** From the start of the page on: sends what waits, and again when the line is back. */
export async function openOutbox(): Promise<void> {
  if (channel) channel.onmessage = (message: MessageEvent<News>) => hear(message.data);
  addEventListener("online", () => sendSoon(0));
  addEventListener("focus", () => sendSoon(0));
  signedOut.watch((isOut) => !isOut && sendSoon(0));
  await look();
  sendSoon(0);
}

/** Keeps the sale, and lets go of its draft in the same breath. It is on the disk when this resolves. */
export async function putIn(entry: Waiting, draftPlace: string): Promise<void> {
  await keep(["outbox", "drafts"], (change) => {
    change.put("outbox", entry.key, entry);
    change.remove("drafts", draftPlace);
  });
  tell({ changed: true });
  sendSoon(0);
}

/** Takes a refused sale out, to be mended or given up. False where it has gone meanwhile. */
export async function takeOut(key: string): Promise<Waiting | undefined> {
  let entry: Waiting | undefined;
  await alone("tavelor-outbox", async () => {
    entry = await keptOne<Waiting>("outbox", key);
    if (entry?.isRefused) await keep(["outbox"], (change) => change.remove("outbox", key));
    else entry = undefined;
  });
  tell({ changed: true });
  return entry;
}

/** After so many ms, in place of any other time that was set. */
export function sendSoon(after: number): void {
  clearTimeout(timer);
  timer = setTimeout(() => void send(), after);
}

// What has become of an entry: settled, sold or refused; to be tried again, others before; or nothing can be
// sent at all until the line is better or somebody has signed in.
type Outcome = "settled" | "later" | "stop";

async function send(): Promise<void> {
  if (isSending || signedOut.get()) return;
  isSending = true;
  let isLater = false;
  try {
    // One page at a time; the server would know a sale that came twice, but there is no need.
    await alone("tavelor-outbox", async () => {
      const entries = (await keptAll<Waiting>("outbox")).map(([, entry]) => entry);
      for (const entry of entries.sort((one, other) => one.at - other.at)) {
        if (entry.isRefused) continue;
        const outcome = await sendOne(entry);
        isLater ||= outcome !== "settled";
        if (outcome === "stop") return;
      }
    });
  } finally {
    isSending = false;
    await look();
    const isLeft = waiting.get().some((entry) => !entry.isRefused);
    if (isLeft && !isLater) {
      sendSoon(0); // put in meanwhile
    } else if (isLeft && !signedOut.get()) {
      sendSoon(pause);
      pause = Math.min(2 * pause, kLongestPause);
    }
  }
}

async function sendOne(entry: Waiting, isAgain = false): Promise<Outcome> {
  const { key } = entry;
  try {
    const { body } = await ask<Sold>("POST", "/sales", entry.body);
    pause = kFirstPause;
    serverAway.set(false);
    await keep(["outbox"], (change) => change.remove("outbox", key));
    tell({ sold: { ...body, key } });
    return "settled";
  } catch (error) {
    if (!(error instanceof RequestError)) throw error;
    if (error.status === 401) {
      signedOut.set(true);
      return "stop";
    }
    if (error.isAway) {
      if (error.status === 0) serverAway.set(true);
      if (error.retryAfter > 0) pause = Math.min(error.retryAfter * 1000, kLongestPause);
      await keep(["outbox"], (change) => change.put("outbox", key, { ...entry, said: error.message }));
      return error.status === 500 ? "later" : "stop";
    }
    // Another page may have signed in since, with a token of its own.
    if (error.status === 403 && !isAgain) {
      await loadSession();
      return signedOut.get() || serverAway.get() ? "stop" : sendOne(entry, true);
    }
    await keep(["outbox"], (change) =>
      change.put("outbox", key, { ...entry, isRefused: true, said: error.message, faults: error.faults }));
    tell({ refused: key });
    return "settled";
  }
}

/** The ticket of a sale, if the server has it. */
export async function ticketOf(key: string): Promise<number | undefined> {
  try {
    return (await get<{ ticket: number }>(at`/sales/${key}`)).ticket;
  } catch (error) {
    if (error instanceof RequestError && error.status === 404) return undefined;
    throw error;
  }
}
