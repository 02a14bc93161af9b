// SPDX-License-Identifier: MIT
// The sale that is being typed, its sums, and what the server is sent of it.
import { newKey } from "../shared/kept.ts";
import { amountOf, discounted, type Fixed, fromNumber, kOne, percentOf, taxWithin, toNumber } from "../shared/money.ts";

export interface Customer {
  code: string;
  name: string;
  place?: string;
  fiscalNumber?: string;
  phone?: string;
  tariff?: string;
}

export interface Line {
  id: string;
  code: string;
  description: string;
  family: string;
  lot: string;
  quantity: Fixed;
  price: Fixed;
  discount: Fixed;
  tax: Fixed;
  surcharge: Fixed;
  hasOwnPrice: boolean;     // typed here; else the shop's
  hasOwnDiscount: boolean;
  isKnown: boolean;         // the shop has told its price for this customer
  fault: string;            // what the server said of it; "" for nothing
}

export interface Draft {
  key: string;  // of the sale, made with its first line; "" before
  customer: Customer | null;
  lines: Line[];
  comment: string;
}

export const kEmpty: Draft = { key: "", customer: null, lines: [], comment: "" };

/** What a search or a scan tells of an article. */
export interface Article {
  code: string;
  description: string;
  price: number;
  tax: number;
  family?: string;
  stock?: number;
}

/** A line as the server quotes it. */
export interface Quoted {
  code: string;
  description: string;
  family: string;
  quantity: number;
  price: number;
  tax: number;
  surcharge: number;
  discount: number;
  lot: string;
  amount: number;
  reason?: string;
}

export const lineAmount = (line: Line): Fixed => amountOf(line.quantity, discounted(line.price, line.discount));

/** The sum of the lines and, of a customer under equivalence surcharge, what comes on top of it. */
export function sums(lines: Line[]): { total: Fixed; surcharge: Fixed } {
  const bases = new Map<string, { tax: Fixed; rate: Fixed; sum: Fixed }>();
  let total = 0n;
  for (const line of lines) {
    const name = `${line.tax}/${line.surcharge}`;
    const entry = bases.get(name) ?? { tax: line.tax, rate: line.surcharge, sum: 0n };
    entry.sum += lineAmount(line);
    bases.set(name, entry);
    total += lineAmount(line);
  }
  let surcharge = 0n;
  for (const { tax, rate, sum } of bases.values()) surcharge += percentOf(sum - taxWithin(sum, tax), rate);
  return { total: total + surcharge, surcharge };
}

/** With an article more: on its line, where it stands as the shop sells it, else on a new one. */
export function withArticle(draft: Draft, article: Article, quantity: Fixed): { draft: Draft; line: string } {
  const same = draft.lines.find((line) => line.code === article.code && !line.hasOwnPrice && !line.hasOwnDiscount &&
    line.lot === "" && (line.quantity < 0n) === (quantity < 0n));
  if (same && same.quantity + quantity !== 0n) {
    return { draft: changed(draft, same.id, { quantity: same.quantity + quantity, fault: "" }), line: same.id };
  }
  const line: Line = {
    id: newKey(), code: article.code, description: article.description, family: article.family ?? "", lot: "",
    quantity, price: fromNumber(article.price), discount: 0n, tax: fromNumber(article.tax), surcharge: 0n,
    hasOwnPrice: false, hasOwnDiscount: false, isKnown: false, fault: "",
  };
  return { draft: { ...draft, key: draft.key || newKey(), lines: [...draft.lines, line] }, line: line.id };
}

export const changed = (draft: Draft, id: string, values: Partial<Line>): Draft =>
  ({ ...draft, lines: draft.lines.map((line) => (line.id === id ? { ...line, ...values } : line)) });

/** A draft without lines is no sale: the next first line makes a key of its own. */
export function without(draft: Draft, id: string): Draft {
  const lines = draft.lines.filter((line) => line.id !== id);
  return lines.length === 0 ? { ...draft, key: "", lines } : { ...draft, lines };
}

/** What is asked of the shop: its price where none was typed. */
export const asQuestion = (line: Line) => ({
  code: line.code, description: line.description, quantity: toNumber(line.quantity),
  ...(line.lot === "" ? {} : { lot: line.lot }),
  ...(line.hasOwnPrice ? { price: toNumber(line.price), tax: toNumber(line.tax) } : {}),
  ...(line.hasOwnDiscount ? { discount: toNumber(line.discount) } : {}),
});

/** What is sold: every line at the price that the customer was told. */
export const asSold = (line: Line) => ({
  code: line.code, description: line.description, family: line.family, lot: line.lot,
  quantity: toNumber(line.quantity), price: toNumber(line.price), discount: toNumber(line.discount),
  tax: toNumber(line.tax), surcharge: toNumber(line.surcharge),
});

/** The shop's answer on a line that may have been typed on since: what was typed stays. */
export const withQuote = (line: Line, quoted: Quoted): Partial<Line> => ({
  ...(line.hasOwnPrice ? {} : { price: fromNumber(quoted.price) }),
  ...(line.hasOwnDiscount ? {} : { discount: fromNumber(quoted.discount) }),
  tax: fromNumber(quoted.tax), surcharge: fromNumber(quoted.surcharge),
  family: quoted.family, description: quoted.description || line.description,
  isKnown: quoted.reason === undefined || quoted.reason === "", fault: quoted.reason ?? "",
});

export interface Part {
  payment: string;
  amount: Fixed;
}

/** The body of POST /sales. */
export interface SaleBody {
  key: string;
  till: string;
  customer: string;
  name: string;
  payment: string;
  delivered: number;
  parts?: { payment: string; amount: number }[];
  comment: string;
  creditGranted?: boolean;
  lines: ReturnType<typeof asSold>[];
}

export function saleBody(draft: Draft, till: string, parts: Part[], delivered: Fixed, isCreditGranted: boolean): SaleBody {
  return {
    key: draft.key, till, customer: draft.customer?.code ?? "", name: draft.customer?.name ?? "",
    payment: parts[0]?.payment ?? "", delivered: toNumber(delivered), comment: draft.comment,
    ...(parts.length > 1 ? { parts: parts.map(({ payment, amount }) => ({ payment, amount: toNumber(amount) })) } : {}),
    ...(isCreditGranted ? { creditGranted: true } : {}),
    lines: draft.lines.map(asSold),
  };
}

/** "3*" before a code: how many. Without it one. */
export function splitQuantity(text: string, readNumber: (text: string) => Fixed | undefined): { quantity: Fixed; rest: string } {
  const parts = /^\s*([-\d.,]+)\s*[*x×]\s*(.*)$/i.exec(text);
  const quantity = parts ? readNumber(parts[1] ?? "") : undefined;
  return parts && quantity !== undefined && quantity !== 0n ? { quantity, rest: parts[2] ?? "" } : { quantity: kOne, rest: text.trim() };
}
