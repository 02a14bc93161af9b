// SPDX-License-Identifier: MIT
// Parts of the office that need no browser.
import { expect, test } from "@playwright/test";
import { geometryOf, kRowHeight } from "../../src/office/list/geometry.ts";
import { kPage, RowStore } from "../../src/office/list/row_store.ts";
import { filterOf, filterText } from "../../src/office/list/filter.ts";
import { href, routeOf } from "../../src/office/routes.ts";
import { daysAfter, readDay, writtenDay } from "../../src/shared/dates.ts";

test("Days are read in each country's order, and what is no day of the calendar is none", () => {
  const today = "2026-11-20";
  for (const [text, day] of [["20/11/2026", "2026-11-20"], ["3.2.26", "2026-02-03"], ["3-2", "2026-02-03"],
    ["2026-02-03", "2026-02-03"], ["1/1/80", "1980-01-01"], ["1/1/70", "2070-01-01"], ["29/2/2028", "2028-02-29"],
    ["20/11/2026 10:32", "2026-11-20T10:32:00"]] as const) {
    expect(readDay(text, today), text).toBe(day);
  }
  expect(readDay("2/13/26", today, "mdy")).toBe("2026-02-13");
  for (const text of ["", "29/2/2026", "31/4/26", "0/1/26", "1/13/26", "20", "20/11/2026 24:00", "x", "1/1/26; DROP"]) {
    expect(readDay(text, today), text).toBeUndefined();
  }
  expect(writtenDay("2026-11-20T10:32:00")).toBe("20/11/2026 10:32");
  expect(writtenDay("1899-12-30T05:30:00")).toBe("05:30");
  expect(readDay("5:30", today)).toBe("1899-12-30T05:30:00");
  expect(writtenDay("2026-11-20", "mdy")).toBe("11/20/2026");
  expect(daysAfter("2026-02-28", 1)).toBe("2026-03-01");
});

test("A million rows fit a scroll bar, whose ends are the first and the last row", () => {
  const view = 600;
  for (const total of [1, 30, 100_000, 1_000_000, 50_000_000]) {
    const { height, rowAt, placeOf } = geometryOf(total, view);
    expect(height).toBeLessThan(16_700_000);
    expect(rowAt(0)).toBe(0);
    const last = rowAt(Math.max(0, height - view)) + view / kRowHeight;
    expect(Math.abs(last - Math.max(total, view / kRowHeight))).toBeLessThan(0.01);
    expect(rowAt(placeOf(total / 2))).toBeCloseTo(total / 2, 3);
  }
});

test("Pages are asked when they are seen, given up when they no longer are, and kept in bounds", async () => {
  const asked: number[] = [];
  const givenUp: number[] = [];
  const waiting = new Map<number, () => void>();
  const store = new RowStore((offset, limit, signal) => new Promise((resolve, reject) => {
    asked.push(offset);
    signal.addEventListener("abort", () => { givenUp.push(offset); reject(new Error("aborted")); });
    waiting.set(offset, () => resolve({ columns: [], total: 1_000_000, offset, rows: Array.from({ length: limit }, (_, at) => [offset + at]) }));
  }), () => undefined);
  waiting.get(0)!();
  await expect.poll(() => store.total).toBe(1_000_000);
  store.want(500_000, 500_020);
  store.want(999_980, 999_999);
  expect(asked).toEqual([0, 500_000, 999_900]);
  expect(givenUp).toEqual([500_000]);
  waiting.get(999_900)!();
  await expect.poll(() => store.row(999_999)).toEqual([999_999]);
  expect(store.row(500_000)).toBeUndefined();
  // Whoever walks through all of it does not fill the memory.
  for (let page = 0; page < 200; ++page) {
    store.want(page * kPage, page * kPage + 1);
    waiting.get(page * kPage)?.();
    await Promise.resolve();
  }
  await expect.poll(() => store.row(199 * kPage)).toEqual([199 * kPage]);
  expect(store.row(10 * kPage)).toBeUndefined();
});

test("Filters and addresses bring back what was put in", () => {
  const filter = { column: "Descripción", comparison: "like", value: "a:b eq:c\n&%" } as const;
  expect(filterOf(filterText(filter))).toEqual(filter);
  expect(filterOf("Nombre:near:x")).toBeUndefined();
  const code = "a/b?c#d%&é";
  expect(routeOf(href`/article/${code}`).path).toEqual(["article", code]);
  expect(routeOf("#/list/A%?x=1").path).toEqual(["list", "A%"]);
});
