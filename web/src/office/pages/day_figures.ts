// SPDX-License-Identifier: MIT
// A day as the office shows it: what closings took, which the server adds up, and what no closing took yet,
// which the tills and their tickets tell.
import { at, get, query, RequestError } from "../../shared/api.ts";
import { session } from "../../shared/session.ts";

export interface Takings { tickets: number; amount: number }
export interface Hour extends Takings { hour: number }
export interface Share { code: string; name: string; total: number }
export interface SoldArticle { code: string; description: string; units: number; amount: number }
export interface Tax { rate: number; base: number; tax: number }
export interface ClosedTill { number: number; till: string; sales: number; isBroken: boolean }

/** Of /day: hours, shares, articles and taxes are those of closed tickets. */
export interface DayAnswer {
  all: Takings;
  open: Takings;
  units: number;
  hours: Hour[];
  families: Share[];
  payments: Share[];
  articles: SoldArticle[];
  taxes: Tax[];
  closings: ClosedTill[];
}
export interface Day extends DayAnswer {
  tills: Share[];
}

interface TillDay { total: number; payments: Share[] }
interface Ticket { time: string; total: number; closing: number | null }

const kPage = 500;
const kMostPages = 20; // tickets beyond are in the sums and not in the hours

/** What closings took and what none took yet. */
export const takenOf = ({ all, open }: DayAnswer): Takings =>
  ({ tickets: all.tickets + open.tickets, amount: all.amount + open.amount });

export async function readDay(day: string, signal: AbortSignal): Promise<Day> {
  const closed = await get<DayAnswer>(`/day${query({ day })}`, signal);
  const { tills, rights } = session.get();
  const nameOf = (till: string): string => tills.find(({ code }) => code === till)?.name ?? till;
  const byTill = closed.closings.map(({ till, sales }) => ({ code: till, name: nameOf(till), total: sales }));
  if (closed.open.tickets === 0) return { ...closed, tills: added(byTill) };

  const openTills = !rights.includes("till.close") ? [] : await Promise.all(tills.map(async ({ code, name }) => {
    const open = await get<TillDay>(at`/tills/${code}/day` + query({ day }), signal).catch((error: unknown) => {
      // A till that was taken out of use, while its tickets stay.
      if (error instanceof RequestError && error.status >= 400 && error.status < 500) return { total: 0, payments: [] };
      throw error;
    });
    return { code, name, total: open.total, payments: open.payments };
  }));
  return {
    ...closed,
    tills: added([...byTill, ...openTills.filter(({ total, payments }) => total !== 0 || payments.length > 0)]),
    payments: added([...closed.payments, ...openTills.flatMap(({ payments }) => payments)]),
    hours: withHours(closed.hours, await openTickets(day, signal)),
  };
}

async function openTickets(day: string, signal: AbortSignal): Promise<Ticket[]> {
  const found: Ticket[] = [];
  for (let page = 0; page < kMostPages; ++page) {
    const { tickets } = await get<{ tickets: Ticket[] }>(`/tickets${query({ day, offset: page * kPage, limit: kPage })}`, signal);
    found.push(...tickets.filter(({ closing }) => closing === null));
    if (tickets.length < kPage) break;
  }
  return found;
}

/** One of each code, largest first. */
function added(shares: Share[]): Share[] {
  const byCode = new Map<string, Share>();
  for (const { code, name, total } of shares) {
    byCode.set(code, { code, name, total: (byCode.get(code)?.total ?? 0) + total });
  }
  return [...byCode.values()].sort((a, b) => b.total - a.total);
}

function withHours(hours: Hour[], tickets: Ticket[]): Hour[] {
  const byHour = new Map(hours.map((hour) => [hour.hour, { ...hour }]));
  for (const { time, total } of tickets) {
    const parts = /^(\d{1,2}):\d\d/.exec(time);
    if (!parts) continue; // a ticket without a time counts in no hour
    const hour = byHour.get(Number(parts[1])) ?? { hour: Number(parts[1]), tickets: 0, amount: 0 };
    byHour.set(hour.hour, { hour: hour.hour, tickets: hour.tickets + 1, amount: hour.amount + total });
  }
  return [...byHour.values()].sort((a, b) => a.hour - b.hour);
}
