// SPDX-License-Identifier: MIT
// A day at two tills, by keyboard alone.
import { expect, test } from "../shop.ts";
import { Till } from "./till.ts";

test("a whole day at two tills by keyboard alone reconciles to the cent", async ({ page, browser, shop, watched }) => {
  const one = new Till(page, shop);
  await one.open("001");
  const other = new Till(await (await browser.newContext()).newPage(), shop);
  await other.open("002");

  // Bread three times, milk once; change of ten euros.
  await one.add("3*PAN001", 1);
  await one.add("leche", 2);
  await one.hasTotal("4,25 €");
  const first = await one.payCash("10");
  await expect(one.last).toContainText("5,75");

  // At the other till by card, with a quantity of weight.
  await other.add("queso", 1);
  await other.press("F4");
  await other.type("0,25");
  await other.press("Enter");
  await other.hasTotal("4,60 €");
  await other.press("F12");
  await other.press("Alt+2");
  await other.press("Enter");
  const second = await other.ticket();
  expect(second).toBe(first + 1);

  // A discount, and paid in two parts: five in cash, the rest by card.
  await one.add("vino", 1);
  await one.press("F7");
  await one.type("10");
  await one.press("Enter");
  await one.hasTotal("6,08 €");
  await one.press("F12");
  await one.type("5");
  await one.press("Enter");
  await one.press("Alt+2");
  await one.press("Enter");
  const third = await one.ticket();

  // Held at one till, taken back at the other.
  await one.add("PAN001", 1);
  await one.press("F8");
  await one.type("vecina");
  await one.press("Enter");
  await one.hasLines(0);
  await other.press("F9");
  await expect(other.page.getByRole("button", { name: /vecina/ })).toBeFocused();
  await other.press("Enter");
  await other.hasLines(1);
  await other.hasTotal("1,10 €");
  await other.payCash();

  // Two of the three loaves come back.
  await one.press("F10");
  await one.type(String(first));
  await one.press("Enter");
  await expect(one.page.getByRole("dialog")).toContainText("Barra de pan");
  await one.type("2");
  await one.press("Enter");
  await expect(one.said).toContainText("Devuelto");

  const tickets = await one.tickets();
  expect(tickets.map(({ total }) => total).reverse()).toEqual([4.25, 4.6, 6.08, 1.1, -2.2]);
  expect(third).toBe(first + 2);

  // Closed with what was counted: 4,25 and 5,00 came in, 2,20 went out.
  await one.press("Control+F10");
  const dialog = one.page.getByRole("dialog");
  await expect(dialog).toContainText("Cierre: ");
  await dialog.getByLabel("Contado").focus();
  await one.type("7,05");
  await expect(dialog).toContainText("7,05");
  await expect(dialog.getByLabel("Diferencia")).toContainText(/Diferencia\s*0,00/);
  await one.press("Enter");
  await expect(dialog).toContainText(/Cierre \d+ hecho/);
  await expect(dialog.locator(".slip")).toContainText("Total Cierre");
  await one.press("Escape");

  // At the other till ten cents too much, in coins.
  await other.press("Control+F10");
  await other.page.getByLabel("Piezas de 1,00 €").focus();
  await other.type("1");
  await other.page.getByLabel("Piezas de 0,10 €").focus();
  await other.type("2");
  await expect(other.page.getByLabel("Diferencia")).toContainText("0,10");
  await other.press("Enter");
  await expect(other.page.getByRole("dialog")).toContainText(/Cierre \d+ hecho/);
  expect(watched).toEqual([]);
});

test("a scanner is heard wherever the focus is, and leaves fields as they were", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  await page.locator(".lines").or(page.locator("#pay")).first().focus();
  await page.getByRole("button", { name: /Teclas/ }).focus();
  await till.scan("8410000000017");
  await till.hasLines(1);
  await till.press("F4");
  await till.scan("8410000000017");
  await expect(page.locator(".quantity span").first()).toHaveText("2");
  await expect(page.locator("dialog input.big")).toHaveValue("1");
  await till.press("Escape");
  await page.locator("#search").focus();
  // Faster than the server answers: none is lost, none is joined to the next.
  for (let times = 0; times < 5; ++times) await till.scan("PAN001");
  await till.hasLines(2);
  await expect(page.locator(".quantity span").nth(1)).toHaveText("5");
  await expect(page.locator("#search")).toHaveValue("");
});

test("an answer that comes late is not shown over a later one", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  await page.route(/articles\/search\?q=pa&/, async (route) => {
    await new Promise((resolve) => setTimeout(resolve, 600));
    await route.continue().catch(() => undefined);
  });
  await page.locator("#search").pressSequentially("pa", { delay: 10 });
  await page.waitForTimeout(100);
  await page.locator("#search").fill("queso");
  await expect(page.getByRole("option")).toHaveText([/Queso/]);
  await page.waitForTimeout(800);
  await expect(page.getByRole("option")).toHaveText([/Queso/]);
});

test("a seller changes no price and gives no discount", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open("001", "2");
  await till.add("PAN001", 1);
  await expect(page.getByRole("button", { name: /Precio/ })).toBeDisabled();
  await till.press("F7");
  await expect(page.getByRole("dialog")).toHaveCount(0);
  await expect(till.said).toContainText("Sin permiso");
});
