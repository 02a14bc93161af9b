// SPDX-License-Identifier: MIT
import { call, expect, kArticles, kThoseArticles, show, test } from "./office.ts";

const kRows = `${kArticles.toLocaleString("es-ES")} filas`;

const rowTexts = (page: import("@playwright/test").Page) => page.locator(".grid-rows .grid-row").allTextContents();

test("A list is ordered by a click on a heading and again the other way round", async ({ office }) => {
  await show(office, kThoseArticles);
  const heading = office.locator(".grid-heading").first();
  await expect(office.locator("[data-row='0']")).toContainText("A0");
  await heading.click();
  if ((await heading.getAttribute("aria-sort")) !== "descending") await heading.click();
  await expect(heading).toHaveAttribute("aria-sort", "descending");
  await expect(office.locator("[data-row='0']")).toContainText("A099999");
  await heading.click();
  await expect(heading).toHaveAttribute("aria-sort", "ascending");
  await expect(office.locator("[data-row='0']")).toContainText("A000000");
});

test("A list is ordered, resized and filtered from its headings by the keyboard", async ({ office }) => {
  await show(office, kThoseArticles);
  const grid = office.getByRole("grid");
  await expect(office.locator("[data-row='0']")).toContainText("A0");
  await expect(grid).toBeFocused();
  const heading = office.locator(".grid-heading").first();
  const before = (await heading.boundingBox())!.width;
  await office.keyboard.press("ArrowUp");
  await office.keyboard.press("Shift+ArrowRight");
  await expect.poll(async () => (await heading.boundingBox())!.width).toBe(before + 16);
  await office.keyboard.press("Enter");
  await expect(heading).toHaveAttribute("aria-sort", /ending/);
  await office.keyboard.press("f");
  await office.keyboard.type("A000012");
  await office.keyboard.press("Enter");
  await expect(office.locator(".list-head [role=status]")).toHaveText("1 filas");
});

test("A hundred thousand rows: only those in view are in the page, and any of them is two keys away", async ({ office }) => {
  await show(office, kThoseArticles);
  await expect(office.locator(".list-head [role=status]")).toHaveText(kRows);
  await expect(office.locator("[data-row='0']")).toContainText("A000000");
  await office.keyboard.press("End");
  await expect(office.locator("[data-row='99999']")).toContainText("A099999");
  await expect(office.locator("[data-row='99999']")).toBeInViewport();
  await office.keyboard.press("PageUp");
  await expect(office.locator(".grid-row.active")).toBeInViewport();
  // The scroll bar in its middle shows the middle.
  await office.getByRole("grid").evaluate((grid) => { grid.scrollTop = (grid.scrollHeight - grid.clientHeight) / 2; });
  await expect(office.locator("[data-row='50000']")).toContainText("A050000");
  await office.keyboard.press("Home");
  await expect(office.locator("[data-row='0']")).toContainText("A000000");
  expect(await office.locator(".grid-row").count()).toBeLessThan(60);
});

test("Filters narrow a list together, and each can be taken away", async ({ office }) => {
  await show(office, kThoseArticles);
  const filters = office.getByRole("search", { name: "Filtrar la lista" });
  await filters.getByLabel("Columna").selectOption("Código");
  await filters.getByRole("textbox", { name: "Valor" }).fill("A00001");
  await office.keyboard.press("Enter");
  await expect(office.locator(".list-head [role=status]")).toHaveText("10 filas");
  await filters.getByLabel("Columna").selectOption("Tarifa_A");
  await filters.getByLabel("Comparación").selectOption("ge");
  await filters.getByRole("textbox", { name: "Valor" }).fill("seis");
  await office.keyboard.press("Enter");
  await expect(office.getByRole("alert")).toContainText("No es un número");
  await filters.getByRole("textbox", { name: "Valor" }).fill("0,15");
  await office.keyboard.press("Enter");
  await expect(filters.locator(".chip")).toHaveCount(3);
  const both = Number((await office.locator(".list-head [role=status]").textContent())!.replace(/\D/g, ""));
  expect(both).toBe(5);
  await filters.locator(".chip").last().click();
  await filters.locator(".chip").last().click();
  await expect(office.locator(".list-head [role=status]")).toHaveText(kRows);
});

test("Columns that are hidden stay hidden when the page is read again", async ({ office }) => {
  await show(office, "#/list/ClsBancos");
  await expect(office.locator(".grid-heading").first()).toBeVisible();
  const before = await office.locator(".grid-heading").count();
  await office.getByRole("button", { name: "Columnas" }).click();
  await office.locator(".column-list input[type=checkbox]").nth(1).uncheck();
  const stored = office.waitForResponse((answer) => answer.request().method() === "PUT");
  await office.getByRole("button", { name: "Hecho" }).click();
  expect((await stored).status()).toBe(200);
  await office.reload();
  await expect(office.locator(".grid-heading")).toHaveCount(before - 1);
  await office.getByRole("button", { name: "Columnas" }).click();
  await office.getByRole("button", { name: "Como al principio" }).click();
  await office.keyboard.press("Escape");
  await expect(office.locator(".grid-heading")).toHaveCount(before);
});

test("A row that somebody adds is seen in an open list", async ({ office }) => {
  await show(office, "#/list/ClsBancos");
  await expect(office.locator(".list-head [role=status]")).toContainText("filas");
  const before = (await rowTexts(office)).length;
  const answer = await call(office, "POST", "/classes/ClsBancos/records", { values: { "Descripción": `Banco ${Date.now()}` } });
  expect(answer.status, JSON.stringify(answer.body)).toBe(201);
  await expect.poll(async () => (await rowTexts(office)).length).toBe(before + 1);
});

test("Every class that has rows has a list", async ({ office }) => {
  test.setTimeout(120_000);
  const classes = (await call(office, "GET", "/classes")).body.filter((one: { hasRows: boolean }) => one.hasRows !== false);
  for (const { name } of classes) {
    await show(office, `#/list/${name}`);
    await expect(office.getByRole("grid").or(office.getByRole("alert")), name).toBeVisible();
    await expect(office.getByRole("alert"), name).toHaveCount(0);
  }
});
