// SPDX-License-Identifier: MIT
// Which page shows what: articles, customers, suppliers, tickets and closings have one of their own.
import type { Key } from "./model.ts";
import { href } from "./routes.ts";

/** The form of a record. */
export const formPage = (name: string, key: Key): string =>
  `${href`/list/${name}/record`}?${new URLSearchParams({ key: JSON.stringify(key) })}`;

const kOwnPages: Record<string, string> = {
  clsarticulos: "article",
  clsclientes: "customer",
  clsproveedores: "supplier",
  clstickets: "ticket",
  clscierres: "closing",
};

/** Where a row of a list leads: to the page of its own, or to its form. */
export function recordPage(name: string, key: Key): string {
  const own = kOwnPages[name.toLowerCase()];
  const parts = Object.values(key);
  return own && parts.length === 1 ? href`/${own}/${String(parts[0])}` : formPage(name, key);
}
