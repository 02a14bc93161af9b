// SPDX-License-Identifier: MIT
// Days and times: "2026-11-20" and "10:32" for the server, "20/11/2026" for people.

/** In which order a country writes day, month and year. */
export type DateOrder = "dmy" | "mdy" | "ymd";

const kDayOfTimes = "1899-12-30"; // the day that a column of times has

const two = (value: number): string => String(value).padStart(2, "0");

/** "20/11/2026", and "20/11/2026 10:32" for a moment; a time alone is one; what is no day comes back as it is. */
export function writtenDay(value: string, order: DateOrder = "dmy"): string {
  const parts = /^(\d{4})-(\d\d)-(\d\d)(?:[T ](\d\d:\d\d)(?::\d\d)?)?/.exec(value);
  if (!parts) return value;
  const [, year = "", month = "", day = "", time] = parts;
  if (time !== undefined && `${year}-${month}-${day}` === kDayOfTimes) return time;
  const written = order === "ymd" ? `${year}-${month}-${day}`
    : order === "mdy" ? `${month}/${day}/${year}` : `${day}/${month}/${year}`;
  return time === undefined || time === "00:00" ? written : `${written} ${time}`;
}

/**
 * What a person typed as the server takes it, or undefined where it is no day of the calendar. A year of
 * two digits is the nearest one; without a year it is that of `today`. A time alone is one.
 */
export function readDay(text: string, today: string, order: DateOrder = "dmy"): string | undefined {
  const alone = /^(\d{1,2}):(\d\d)$/.exec(text.trim());
  if (alone) return Number(alone[1]) > 23 || Number(alone[2]) > 59 ? undefined : `${kDayOfTimes}T${two(Number(alone[1]))}:${alone[2]}:00`;
  const parts = /^(\d{1,4})[-/. ](\d{1,2})(?:[-/. ](\d{1,4}))?(?:[ T](\d{1,2}):(\d\d)(?::\d\d)?)?$/.exec(text.trim());
  if (!parts) return undefined;
  const numbers = [Number(parts[1]), Number(parts[2]), parts[3] === undefined ? NaN : Number(parts[3])];
  const isYearFirst = parts[1]!.length === 4 || (order === "ymd" && parts[3] !== undefined);
  const at = isYearFirst ? [0, 1, 2] : order === "mdy" ? [2, 0, 1] : [2, 1, 0];
  const [year = NaN, month = NaN, day = NaN] = at.map((index) => numbers[index]!);
  const yearOfToday = Number(today.slice(0, 4));
  const fullYear = Number.isNaN(year) ? yearOfToday : year >= 100 ? year : nearest(year, yearOfToday);
  const date = new Date(Date.UTC(fullYear, month - 1, day));
  if (date.getUTCFullYear() !== fullYear || date.getUTCMonth() !== month - 1 || date.getUTCDate() !== day) {
    return undefined;
  }
  const written = `${String(fullYear).padStart(4, "0")}-${two(month)}-${two(day)}`;
  if (parts[4] === undefined) return written;
  const hour = Number(parts[4]);
  const minute = Number(parts[5]);
  return hour > 23 || minute > 59 ? undefined : `${written}T${two(hour)}:${two(minute)}:00`;
}

/** The year of two digits that lies within fifty years of this one. */
function nearest(year: number, now: number): number {
  const same = Math.floor(now / 100) * 100 + year;
  return same > now + 50 ? same - 100 : same < now - 49 ? same + 100 : same;
}

/** So many days later, or earlier. */
export function daysAfter(day: string, count: number): string {
  const date = new Date(`${day}T00:00:00Z`);
  date.setUTCDate(date.getUTCDate() + count);
  return date.toISOString().slice(0, 10);
}
