// SPDX-License-Identifier: MIT
import { createRequire } from "node:module";
import { call, expect, form, kHostile, kHostileArticle, kPin, kThoseArticles, show, signIn, sold, test } from "./office.ts";

const { default: AxeBuilder } = createRequire(import.meta.url)("@axe-core/playwright") as typeof import("@axe-core/playwright");

const kPages: Record<string, string> = {
  start: "#/", day: "#/day", lists: "#/lists", list: "#/list/clsArticulos", form: form("ClsClientes", ["00001"]),
  customers: "#/customers", customer: "#/customer/00001", suppliers: "#/suppliers", supplier: "#/supplier/401",
  articles: "#/articles", article: "#/article/A000001", tickets: "#/tickets", ticket: "#/ticket/1",
  closings: "#/closings", closing: "#/closing/1",
};

for (const [width, height] of [[1366, 768], [390, 844]] as const) {
  test(`axe finds nothing on any page, and none is wider than a window of ${width}`, async ({ office }) => {
    test.setTimeout(120_000);
    await office.setViewportSize({ width, height });
    for (const [name, hash] of Object.entries(kPages)) {
      await show(office, hash);
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
  await expect(office.getByLabel("Nombre, código, NIF o población del cliente")).toBeFocused();
  await office.keyboard.type("pepe");
  await expect(office.getByRole("link", { name: "Bar Pepe SL" })).toBeVisible();
  await office.keyboard.press("Enter");
  await expect(office.getByRole("heading", { name: "Bar Pepe SL" })).toBeVisible();
  await expect(office.getByText("Nos debe")).toBeVisible();
  await expect(office.getByRole("heading", { name: "Cuenta", exact: true })).toBeVisible();
});

test("The box at the top finds customers, articles, tickets and lists from any page, by the keyboard", async ({ office }) => {
  await show(office, "#/day");
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
  await show(office, "#/day");
  const tickets = office.locator(".figure").filter({ hasText: "Tickets" }).locator(".figure-value");
  await expect(tickets).toBeVisible();
  const before = Number(await tickets.textContent());
  await sold(office);
  await expect(tickets).toHaveText(String(before + 1));
});

test("Texts of the database are shown as texts on every page", async ({ office }) => {
  await show(office, `#/article/${kHostileArticle}`);
  await expect(office.getByRole("heading", { name: kHostile })).toBeVisible();
  await show(office, kThoseArticles);
  await expect(office.locator("[data-row='3']")).toContainText(kHostile);
  await show(office, form("clsArticulos", [kHostileArticle]));
  await expect(office.locator("[name=Descripción]")).toHaveValue(kHostile);
  await show(office, "#/articles");
  await expect(office.getByLabel("Nombre, código o principio de sus palabras")).toBeFocused();
  await office.keyboard.type(kHostileArticle);
  await expect(office.getByText(kHostile).first()).toBeVisible();
});

test("An address that means nothing says so, and so does a record that is not there", async ({ office }) => {
  await show(office, "#/nada/de/nada");
  await expect(office.getByText("Aquí no hay ninguna página.")).toBeVisible();
  await show(office, "#/customer/99999999");
  await expect(office.getByRole("alert")).toBeVisible();
  await show(office, "#/list/ClsNada");
  await expect(office.getByRole("alert")).toBeVisible();
  await show(office, "#/list/ClsBancos/record?key=%7Bno");
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
  await office.locator("input.pin").fill(kPin);
  await office.keyboard.press("Enter");
  await expect(office.locator("dialog.sign-in")).toBeHidden();
});

test("A seller is told that the office is not his, and the server refuses him all the same", async ({ page, filled }) => {
  await signIn(page, filled, "2");
  await expect(page.getByText("Tu puesto no abre la oficina.")).toBeVisible();
  expect((await call(page, "GET", "/classes")).status).toBe(403);
  expect((await call(page, "PATCH", "/classes/ClsBancos/record", { key: ["1"], values: { Descripción: "x" } })).status).toBe(403);
});
