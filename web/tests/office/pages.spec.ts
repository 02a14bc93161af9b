// SPDX-License-Identifier: MIT
import { createRequire } from "node:module";
import { call, expect, form, kEvil, open, test } from "./office.ts";

const { default: AxeBuilder } = createRequire(import.meta.url)("@axe-core/playwright") as typeof import("@axe-core/playwright");

const kPages: Record<string, string> = {
  start: "#/", day: "#/day", lists: "#/lists", list: "#/list/clsArticulos", form: form("ClsClientes", { Codigo: "00001" }),
  customers: "#/customers", customer: "#/customer/00001", suppliers: "#/suppliers", supplier: "#/supplier/401",
  articles: "#/articles", article: "#/article/A000001", tickets: "#/tickets", ticket: "#/ticket/1",
  closings: "#/closings", closing: "#/closing/1",
};

for (const [width, height] of [[1366, 768], [390, 844]] as const) {
  test(`axe finds nothing on any page, and none is wider than a window of ${width}`, async ({ office }) => {
    test.setTimeout(120_000);
    await office.setViewportSize({ width, height });
    for (const [name, hash] of Object.entries(kPages)) {
      await open(office, hash);
      await expect(office.locator("main h1, main h2").first(), name).toBeVisible();
      await expect(office.locator(".waiting"), name).toHaveCount(0);
      const { violations } = await new AxeBuilder({ page: office as never }).analyze();
      expect(violations.map(({ id, nodes }) => `${id} ${nodes[0]?.html}`), name).toEqual([]);
      expect(await office.evaluate(() => document.documentElement.scrollWidth - innerWidth), name).toBeLessThanOrEqual(0);
      if (process.env.TAVELOR_SCREENSHOTS) await office.screenshot({ path: `${process.env.TAVELOR_SCREENSHOTS}/${width}-${name}.png` });
    }
  });
}

test("A new user finds a customer's account from the start, by what it says there", async ({ office }) => {
  await office.getByRole("link", { name: /Cuentas de clientes/ }).click();
  await office.keyboard.type("pepe");
  await expect(office.getByRole("link", { name: "Bar Pepe SL" })).toBeVisible();
  await office.keyboard.press("Enter");
  await expect(office.getByRole("heading", { name: "Bar Pepe SL" })).toBeVisible();
  await expect(office.getByText("Nos debe")).toBeVisible();
  await expect(office.getByRole("heading", { name: "Cuenta", exact: true })).toBeVisible();
});

test("The box at the top finds customers, articles, tickets and lists from any page, by the keyboard", async ({ office }) => {
  await open(office, "#/day");
  for (const [text, heading] of [["pepe", "Bar Pepe SL"], ["A000002", /./], ["bancos", "Bancos"]] as const) {
    await office.keyboard.press("Control+k");
    await office.keyboard.type(text);
    await expect(office.getByRole("option").first()).toBeVisible();
    await office.keyboard.press("Enter");
    await expect(office.getByRole("listbox")).toBeHidden();
    await expect(office.locator("main h1").first()).toHaveText(heading);
  }
  await office.keyboard.press("Control+k");
  await office.keyboard.type("1");
  await expect(office.getByRole("option", { name: /Ticket 1/ })).toBeVisible();
});

test("The page of today follows the tills without being read again", async ({ office }) => {
  await open(office, "#/day");
  const tickets = office.locator(".figure").filter({ hasText: "Tickets" }).locator(".figure-value");
  await expect(tickets).toBeVisible();
  const before = Number(await tickets.textContent());
  const sold = await call(office, "POST", "/sales", {
    key: crypto.randomUUID(), till: "01", customer: "", name: "", payment: "1", delivered: 5, comment: "",
    lines: [{ code: "A000001", quantity: 1, price: 1.1 }],
  });
  expect(sold.status, JSON.stringify(sold.body)).toBe(201);
  await expect(tickets).toHaveText(String(before + 1));
});

test("Texts of the database are shown as texts on every page", async ({ office }) => {
  const record = `/classes/clsArticulos/record`;
  const read = await call(office, "GET", `${record}?key=${encodeURIComponent('["A000003"]')}`);
  const stored = await call(office, "PATCH", record, { key: ["A000003"], original: read.body.values, values: { Descripcion: kEvil } });
  expect(stored.status, JSON.stringify(stored.body)).toBe(200);
  await open(office, "#/article/A000003");
  await expect(office.getByRole("heading", { name: kEvil })).toBeVisible();
  await open(office, "#/list/clsArticulos?order=Codigo");
  await expect(office.locator("[data-row='3']")).toContainText("<img src=x");
  await open(office, form("clsArticulos", { Codigo: "A000003" }));
  await expect(office.locator("[name=Descripcion]")).toHaveValue(kEvil);
  await open(office, "#/articles");
  await office.keyboard.type("A000003");
  await expect(office.getByText("<img src=x").first()).toBeVisible();
});

test("An address that means nothing says so, and so does a record that is not there", async ({ office }) => {
  await open(office, "#/nada/de/nada");
  await expect(office.getByText("Aquí no hay ninguna página.")).toBeVisible();
  await open(office, "#/customer/99999999");
  await expect(office.getByRole("alert")).toBeVisible();
  await open(office, "#/list/ClsNada");
  await expect(office.getByRole("alert")).toBeVisible();
  await open(office, "#/list/ClsBancos/record?key=%7Bno");
  await expect(office.getByRole("alert")).toContainText("no dice qué registro");
});

test("The office speaks English, and still does when it is read again", async ({ office }) => {
  await office.getByRole("button", { name: "English" }).click();
  await expect(office.getByRole("link", { name: /Customer accounts/ })).toBeVisible();
  await office.reload();
  await expect(office.getByRole("link", { name: /Customer accounts/ })).toBeVisible();
});

test("Who signs out sees nothing before the next PIN, and a wrong PIN is told", async ({ office }) => {
  await office.getByRole("button", { name: "Salir" }).click();
  await expect(office.locator("dialog.sign-in")).toBeVisible();
  expect((await call(office, "GET", "/classes")).status).toBe(401);
  await office.locator("input.pin").fill("9999");
  await office.keyboard.press("Enter");
  await expect(office.locator("dialog.sign-in [role=alert]")).toContainText("PIN");
  await office.locator("input.pin").fill("1234");
  await office.keyboard.press("Enter");
  await expect(office.locator("dialog.sign-in")).toBeHidden();
});
