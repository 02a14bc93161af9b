// SPDX-License-Identifier: MIT
// Who is signed in, and how the shop writes its numbers and days.
import { ask, get, setToken } from "../shared/api.ts";
import type { DateOrder } from "../shared/dates.ts";
import { chosenLanguage, setLanguage } from "../shared/texts.ts";

interface Named {
  code: string;
  name: string;
}

export interface Session {
  employee: Named | null;
  role: string;
  rights: string[];
  token: string;
  shop: { name: string; fiscalNumber?: string; keepsRecords?: boolean };
  locale: { language: string; decimal: string; group: string; currency: string; dateOrder: DateOrder };
  today: string;
  tills: Named[];
  payments?: Named[];
  employees: Named[];
  version: string;
}

let current: Session | undefined;

function take(session: Session): Session {
  current = session;
  setToken(session.token ?? "");
  setLanguage(chosenLanguage() ?? session.locale.language);
  return session;
}

/** Pages are drawn only once it is known. */
export function session(): Session {
  if (!current) throw new Error("no session was read");
  return current;
}

export const may = (right: string): boolean => session().rights.includes(right);

export const readSession = async (): Promise<Session> => take(await get<Session>("/session"));
export const signIn = async (employee: string, pin: string): Promise<Session> =>
  take((await ask<Session>("POST", "/session", { employee, pin })).body);
export const signOut = async (): Promise<Session> => {
  await ask("DELETE", "/session");
  return readSession();
};
export const changePin = async (old: string, fresh: string): Promise<void> => {
  await ask("POST", "/session/pin", { old, new: fresh });
};
