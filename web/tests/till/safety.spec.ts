// SPDX-License-Identifier: MIT
// No sale is lost and none is made twice: the line cut in each step, a reload, a second page, a killed server.
import { expect, test } from "../shop.ts";
import { Till } from "./till.ts";

/** After all that the sales of these totals are there once each, and nothing waits any more. */
async function soldOnce(till: Till, before: number, totals: number[]): Promise<void> {
  await expect(till.page.getByRole("button", { name: /por enviar|rechazada/ })).toHaveCount(0, { timeout: 40_000 });
  const tickets = await till.tickets();
  expect(tickets.slice(0, tickets.length - before).map(({ total }) => total).reverse()).toEqual(totals);
  expect(new Set(tickets.map(({ key }) => key)).size).toBe(tickets.length);
}

test("a sale whose request never arrives is kept, seen and sent once the line is back", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const before = (await till.tickets()).length;
  await till.add("PAN001", 1);
  await page.route("**/api/v1/**", (route) => route.abort());
  await till.press("F12");
  await till.press("Enter");
  await expect(page.getByRole("button", { name: /1 por enviar/ })).toBeVisible();
  await expect(page.getByText("El servidor no contesta.", { exact: false }).first()).toBeVisible();
  // Selling goes on at known prices.
  await till.add("PAN001", 1);
  await till.press("F12");
  await till.press("Enter");
  await expect(page.getByRole("button", { name: /2 por enviar/ })).toBeVisible();
  await page.unroute("**/api/v1/**");
  await soldOnce(till, before, [1.1, 1.1]);
});

test("a sale whose answer is lost is not sold again", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const before = (await till.tickets()).length;
  let cut = 2;
  await page.route("**/api/v1/sales", async (route) => {
    await route.fetch();
    if (cut-- > 0) await route.abort();
    else await route.continue();
  });
  await till.add("leche", 1);
  await till.press("F12");
  await till.press("Enter");
  await till.ticket();
  await soldOnce(till, before, [0.95]);
});

for (const step of ["articles/scan", "till/quote", "articles/search"]) {
  test(`the line is cut at ${step}: the sale goes through all the same`, async ({ page, shop }) => {
    const till = new Till(page, shop);
    await till.open();
    await till.add("PAN001", 1);
    await till.press("Delete");
    await till.hasLines(0);
    const before = (await till.tickets()).length;
    await page.route(`**/api/v1/${step}**`, (route) => route.abort());
    await till.add("PAN001", 1);
    await page.unroute(`**/api/v1/${step}**`);
    await till.payCash("5");
    await soldOnce(till, before, [1.1]);
  });
}

test("a reload keeps the sale that is typed, and one that is on its way", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const before = (await till.tickets()).length;
  await till.add("2*VIN001", 1);
  await page.reload();
  await till.hasLines(1);
  await till.hasTotal("13,50 €");
  await page.route("**/api/v1/sales", () => undefined); // it never answers
  await till.press("F12");
  await till.press("Enter");
  await expect(page.getByRole("button", { name: /1 por enviar/ })).toBeVisible();
  await page.unroute("**/api/v1/sales");
  await page.reload();
  await till.hasLines(0);
  await soldOnce(till, before, [13.5]);
});

test("a double click pays once", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const before = (await till.tickets()).length;
  await till.add("PAN001", 1);
  await till.press("F12");
  await page.locator("dialog.pay button.large").dblclick({ delay: 1 });
  await till.ticket();
  await page.waitForTimeout(300);
  await soldOnce(till, before, [1.1]);
});

test("two pages of a browser share what waits, and each has a sale of its own", async ({ page, context, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const before = (await till.tickets()).length;
  const second = new Till(await context.newPage(), shop);
  await second.open();
  await till.add("PAN001", 1);
  await second.hasLines(0);
  let posts = 0;
  await context.route("**/api/v1/sales", async (route) => {
    posts += 1;
    if (posts <= 3) await route.abort();
    else await route.continue();
  });
  await till.press("F12");
  await till.press("Enter");
  await expect(second.page.getByRole("button", { name: /1 por enviar/ })).toBeVisible();
  await second.add("leche", 1);
  await second.press("F12");
  await second.press("Enter");
  await soldOnce(second, before, [1.1, 0.95]);
  await expect(page.getByRole("button", { name: /por enviar/ })).toHaveCount(0);
});

test("what a closed page has left the next one takes over", async ({ page, context, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  await till.add("2*LEC001", 1);
  await page.waitForTimeout(200);
  await page.close();
  const next = new Till(await context.newPage(), shop);
  await next.open();
  await next.hasLines(1);
  await next.hasTotal("1,90 €");
});

test("a server killed in the middle of a sale has it once when it is back", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const before = (await till.tickets()).length;
  await till.add("3*PAN001", 1);
  const asked = page.waitForRequest("**/api/v1/sales");
  await till.press("F12");
  await till.press("Enter");
  await asked;
  await shop.kill();
  await expect(page.getByText("El servidor no contesta.", { exact: false }).first().or(till.last.getByText(/Ticket/))).toBeVisible();
  await till.add("PAN001", 1); // known from before
  await till.press("F12");
  await till.press("Enter");
  await shop.start();
  await soldOnce(till, before, [3.3, 1.1]);
});

test("signed out in the middle nothing is lost", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const before = (await till.tickets()).length;
  await till.add("PAN001", 1);
  await page.context().clearCookies();
  await till.press("F12");
  await till.press("Enter");
  await expect(page.locator(".pin")).toBeVisible();
  await till.signIn();
  await till.ticket();
  await soldOnce(till, before, [1.1]);
});

test("a refused sale comes back with its line marked, and is sold once mended", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const before = (await till.tickets()).length;
  await till.add("PAN001", 1);
  // As a shop refuses it whose article changed meanwhile.
  await page.route("**/api/v1/sales", (route) => route.fulfill({
    status: 422, contentType: "application/json",
    body: JSON.stringify({ error: { kind: "refused", message: "The sale is refused.", faults: [{ line: 1, code: "PAN001", reason: "the tax is not known" }] } }),
  }), { times: 1 });
  await till.press("F12");
  await till.press("Enter");
  await page.getByRole("button", { name: /1 rechazada/ }).click();
  await expect(page.getByRole("dialog")).toContainText("the tax is not known");
  await page.getByRole("button", { name: "Corregir" }).click();
  await expect(page.locator("tr.faulty")).toContainText("the tax is not known");
  await till.press("F4");
  await till.type("2");
  await till.press("Enter");
  await till.payCash();
  await soldOnce(till, before, [2.2]);
});

test("who pays before the last code is found pays for it too, and holding is not overtaken", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const before = (await till.tickets()).length;
  const late = async (route: import("@playwright/test").Route) => {
    await new Promise((resolve) => setTimeout(resolve, 400));
    await route.continue();
  };
  await page.route("**/api/v1/articles/scan/**", late);
  await page.route("**/api/v1/held", late);
  await till.add("PAN001", 1);
  await till.scan("LEC001");
  await till.press("F12");
  await expect(page.locator("dialog.pay")).toContainText("2,05");
  await till.press("Enter");
  await till.ticket();
  await soldOnce(till, before, [2.05]);
  await till.add("VIN001", 1);
  await till.press("F8");
  await till.press("Enter");
  await till.press("F3"); // not before it is held
  await till.scan("8410000000017");
  await till.hasLines(0);
  await expect(page.getByRole("dialog")).toHaveCount(0);
  await till.press("F9");
  await expect(page.getByRole("dialog")).toContainText("Recuperar");
});

test("a return whose answer is lost is made once", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  await till.add("VIN001", 1);
  const ticket = await till.payCash();
  const before = (await till.tickets()).length;
  await page.route("**/api/v1/returns", async (route) => {
    await route.fetch();
    await route.abort();
  }, { times: 1 });
  await till.press("F10");
  await till.type(String(ticket));
  await till.press("Enter");
  await page.getByRole("button", { name: "Todo" }).click();
  await page.getByRole("button", { name: /^Devolver/ }).click();
  await expect(page.getByRole("dialog")).toContainText("no se hace dos veces");
  await page.getByRole("button", { name: /^Devolver/ }).click();
  await expect(till.said).toContainText(/Devuelto|otra devolución/);
  const tickets = await till.tickets();
  expect(tickets.length).toBe(before + 1);
  expect(tickets[0]?.total).toBe(-6.75);
});
