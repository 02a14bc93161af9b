// SPDX-License-Identifier: MIT
// Values of columns as people read and type them.
import { readDay } from "../shared/dates.ts";
import { fromNumber, read, toNumber, written, writtenMoney } from "../shared/money.ts";
import type { Column, Value } from "./model.ts";
import { dayText, session } from "../shared/session.ts";
import { t } from "./texts.ts";

export const money = (value: number): string => writtenMoney(fromNumber(value), session.get().locale);
export const quantity = (value: number): string => written(fromNumber(value), session.get().locale);
export const day = dayText;
/** What was typed as a day, or undefined. */
export const typedDay = (text: string): string | undefined =>
  readDay(text, session.get().today, session.get().locale.dateOrder);

export const isNumeric = ({ type }: Column): boolean => type === "number" || type === "money" || type === "integer";

/** As a list shows it. */
export function shown(value: Value | undefined, column: Column): string {
  if (value === null || value === undefined) return "";
  if (column.type === "flag") return value ? t("yes") : t("no");
  return typed(value, column);
}

/** As a field shows it, to be typed over. */
export function typed(value: Value, column: Column): string {
  if (value === null) return "";
  if (column.type === "date") return day(String(value));
  if (typeof value !== "number") return String(value);
  if (column.type === "integer") return String(value);
  // What has more decimals, or more digits, than a typed number is shown as it is stored.
  const isExact = Math.abs(value) < 1e12 && toNumber(fromNumber(value)) === value;
  if (!isExact) return String(value).replace(".", session.get().locale.decimal);
  return written(fromNumber(value), session.get().locale, column.type === "money" ? 2 : 0);
}

export type Read = { value: Value } | { fault: string };

/** What was typed as the server takes it. `before` is the stored value: an empty text of a Null stays one. */
export function readValue(text: string, column: Column, before: Value): Read {
  if (column.type === "text" || column.type === "memo") {
    if (text === "") return { value: before === null && column.nullable ? null : "" };
    if (column.type === "text" && column.size > 0 && [...text].length > column.size) {
      return { fault: t("tooLong", { most: column.size, now: [...text].length }) };
    }
    return { value: text };
  }
  if (text.trim() === "") return column.nullable ? { value: null } : { fault: t("mustNotBeEmpty") };
  if (column.type === "date") {
    const value = typedDay(text);
    return value === undefined ? { fault: t("noDay", { example: day(session.get().today) }) } : { value };
  }
  if (column.type === "integer") {
    const plain = text.trim();
    if (!/^[-+]?\d{1,15}$/.test(plain)) return { fault: t("noInteger") };
    const value = Number(plain);
    return Math.abs(value) > 2_147_483_647 ? { fault: t("tooLarge") } : { value };
  }
  const value = read(text, session.get().locale);
  return value === undefined ? { fault: t("noNumber", { example: written(12_345_000n, session.get().locale, 2) }) }
    : { value: toNumber(value) };
}
