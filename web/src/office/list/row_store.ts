// SPDX-License-Identifier: MIT
// The rows of a list as far as they were asked for: pages come when a row of theirs comes into view.
import type { Column, RowsAnswer, Value } from "../model.ts";

export const kPage = 100; // rows
const kMostPages = 80; // kept; those farthest from the view go first
const kMostAtOnce = 3; // requests under way

/** `isFresh` reads the rows anew in place of those that the server has kept for this list. */
type AskPage = (offset: number, limit: number, signal: AbortSignal, isFresh: boolean) => Promise<RowsAnswer>;

export class RowStore {
  /** Unknown until the first answer. */
  total: number | undefined;
  columns: Column[] = [];
  /** Why the last page did not come. */
  error: unknown;

  private readonly pages = new Map<number, Value[][]>();
  private readonly underway = new Map<number, AbortController>();
  private stale = new Set<number>();
  private view: [number, number] = [0, 0]; // pages
  private isDropped = false;
  private isOld = false;

  constructor(private readonly askPage: AskPage, private readonly changed: () => void) {
    this.fetch(0);
  }

  row(index: number): Value[] | undefined {
    return this.pages.get(Math.floor(index / kPage))?.[index % kPage];
  }

  /** These rows are seen now. */
  want(first: number, last: number): void {
    this.view = [Math.floor(first / kPage), Math.floor(Math.max(first, last) / kPage)];
    for (const [page, request] of this.underway) {
      if (page !== 0 && !this.isSeen(page)) {
        request.abort();
        this.underway.delete(page);
      }
    }
    this.next();
  }

  /** What was read may have changed: what is seen is asked again, and shown as it was until then. */
  refresh(): void {
    this.stale = new Set(this.pages.keys());
    this.error = undefined;
    this.isOld = true;
    for (const request of this.underway.values()) request.abort();
    this.underway.clear();
    this.next();
  }

  drop(): void {
    this.isDropped = true;
    for (const request of this.underway.values()) request.abort();
  }

  private isSeen(page: number): boolean {
    return page >= this.view[0] && page <= this.view[1];
  }

  private next(): void {
    if (this.error !== undefined) return;
    for (let page = this.view[0]; page <= this.view[1]; ++page) {
      if (this.underway.size >= kMostAtOnce) return;
      const isThere = this.pages.has(page) && !this.stale.has(page);
      const isBehind = this.total !== undefined && page * kPage >= this.total && page !== 0;
      if (!isThere && !isBehind && !this.underway.has(page)) this.fetch(page);
    }
  }

  private fetch(page: number): void {
    const request = new AbortController();
    this.underway.set(page, request);
    const isFresh = this.isOld;
    this.isOld = false;
    this.askPage(page * kPage, kPage, request.signal, isFresh).then(
      (answer) => {
        if (request.signal.aborted) return;
        this.underway.delete(page);
        this.stale.delete(page);
        this.total = answer.total;
        this.columns = answer.columns;
        this.pages.set(page, answer.rows);
        this.forgetFarPages();
        this.next();
        this.changed();
      },
      (error: unknown) => {
        if (request.signal.aborted || this.isDropped) return;
        this.underway.delete(page);
        this.error = error;
        this.changed();
      },
    );
  }

  private forgetFarPages(): void {
    if (this.pages.size <= kMostPages) return;
    const middle = (this.view[0] + this.view[1]) / 2;
    const farthest = [...this.pages.keys()].sort((a, b) => Math.abs(b - middle) - Math.abs(a - middle));
    for (const page of farthest.slice(0, this.pages.size - kMostPages)) this.pages.delete(page);
  }
}
