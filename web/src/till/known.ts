// SPDX-License-Identifier: MIT
// The articles that this till has seen, with their prices: what may be sold while the server is away.
import { keep, keptAll } from "../shared/kept.ts";
import type { Article } from "./sale.ts";

const kMost = 20_000;
const articles = new Map<string, Article>();
const scans = new Map<string, string>(); // what was scanned, and whose code it is

interface Kept extends Article {
  scans: string[];
}

const folded = (text: string): string => text.normalize("NFD").replace(/\p{M}/gu, "").toLowerCase();

export async function openKnown(): Promise<void> {
  for (const [code, { scans: texts, ...article }] of await keptAll<Kept>("articles")) {
    articles.set(code, article);
    for (const text of texts) scans.set(text, code);
  }
}

/** Remembers what the shop asks of anybody. `scan` is the text under which it was found. */
export function learn(article: Article, scan?: string): void {
  const before = articles.get(article.code);
  const isOld = before && before.price === article.price && before.tax === article.tax &&
    before.description === article.description && (scan === undefined || scans.get(scan) === article.code);
  if (isOld || (!before && articles.size >= kMost)) return;
  articles.set(article.code, article);
  if (scan !== undefined) scans.set(scan, article.code);
  const texts = [...scans].filter(([, code]) => code === article.code).map(([text]) => text);
  // What is not kept is asked for again.
  void keep(["articles"], (change) => change.put("articles", article.code, { ...article, scans: texts })).catch(() => undefined);
}

export const knownScan = (text: string): Article | undefined => articles.get(scans.get(text) ?? text);

/** Those whose code or words begin with all words of the text, in any order. */
export function knownArticles(text: string, most: number): Article[] {
  const wanted = folded(text).split(/\s+/).filter(Boolean);
  const found: Article[] = [];
  for (const article of articles.values()) {
    const words = [folded(article.code), ...folded(article.description).split(/[^\p{L}\p{N}]+/u)];
    if (wanted.every((start) => words.some((word) => word.startsWith(start)))) found.push(article);
    if (found.length === most) break;
  }
  return found;
}
