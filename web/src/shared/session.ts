// SPDX-License-Identifier: MIT
// Who is signed in, and what of the shop a page is told once.
import { ask, get, RequestError, setToken } from "./api.ts";
import { type DateOrder, writtenDay } from "./dates.ts";
import { type Fixed, type NumberFormat, written, writtenMoney } from "./money.ts";
import { store } from "./store.ts";
import { chosenLanguage, setLanguage } from "./texts.ts";

export interface Named {
  code: string;
  name: string;
}
export interface Payment extends Named {
  isCash: boolean;
  isOnCredit: boolean;
}
export interface Session {
  employee: Named | null;
  role: string;
  rights: string[];
  token: string;
  shop: { name: string; fiscalNumber?: string; keepsRecords?: boolean; warehouse?: string };
  locale: NumberFormat & { language: string; dateOrder: DateOrder };
  today: string;
  tills: Named[];
  payments: Payment[];
  taxes: (Named & { rate: number })[];
  tariffs: Named[];
  employees: Named[];
  version: string;
}

const kPlace = "tavelor.shop";
const kNobody: Session = {
  employee: null, role: "", rights: [], token: "", shop: { name: "" },
  locale: { language: "es", decimal: ",", group: ".", currency: "€", dateOrder: "dmy" },
  today: "", tills: [], payments: [], taxes: [], tariffs: [], employees: [], version: "",
};

/** What the server has said last. Once somebody has signed in, the shop's part stays when he is signed out. */
export const session = store<Session>(kNobody);
/** Whether somebody must give a PIN before anything goes on; and whether the server answers. */
export const signedOut = store(false);
export const serverAway = store(false);

export const may = (right: string): boolean => session.get().rights.includes(right);
export const money = (value: Fixed): string => writtenMoney(value, session.get().locale);
export const plain = (value: Fixed, least = 0): string => written(value, session.get().locale, least);

/** "2026-11-20" as the country writes days. */
export const dayText = (day: string): string => writtenDay(day, session.get().locale.dateOrder);

function accept(answer: Session): void {
  setToken(answer.token ?? "");
  const before = session.get();
  const merged = answer.employee === null ? { ...before, ...answer, tills: before.tills, payments: before.payments,
    taxes: before.taxes, tariffs: before.tariffs, today: before.today, shop: { ...before.shop, ...answer.shop } } : answer;
  setLanguage(chosenLanguage() ?? merged.locale.language);
  session.set(merged);
  signedOut.set(answer.employee === null);
  serverAway.set(false);
  // What is no secret is kept, so that a page which starts without its server can sell.
  if (answer.employee !== null) localStorage.setItem(kPlace, JSON.stringify({ ...answer, token: "" }));
}

/** Asks who is signed in. Where no server answers the shop is the one kept from the last time. */
export async function loadSession(): Promise<void> {
  try {
    accept(await get<Session>("/session"));
  } catch (error) {
    if (!(error instanceof RequestError)) throw error;
    if (error.status === 401) {
      signedOut.set(true);
      return;
    }
    serverAway.set(true);
    const kept = localStorage.getItem(kPlace);
    if (session.get() === kNobody && kept !== null) session.set(JSON.parse(kept) as Session);
    setLanguage(chosenLanguage() ?? session.get().locale.language);
  }
}

export async function signIn(employee: string, pin: string): Promise<void> {
  accept((await ask<Session>("POST", "/session", { employee, pin })).body);
}

export async function signOut(): Promise<void> {
  await ask("DELETE", "/session");
  await loadSession();
}

/**
 * Looks at what a request has thrown: signed out asks for the PIN, no answer shows that the server is
 * away. True where it was one of the two, and the caller needs to say nothing.
 */
export function noted(error: unknown): boolean {
  if (!(error instanceof RequestError)) return false;
  if (error.status === 401) signedOut.set(true);
  else if (error.status === 0) serverAway.set(true);
  else return false;
  return true;
}
