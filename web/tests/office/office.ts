// SPDX-License-Identifier: MIT
// What every test of the office has: a shop of a hundred thousand articles, and its owner signed in.
import { execFileSync } from "node:child_process";
import { writeFileSync } from "node:fs";
import { join } from "node:path";
import type { Browser, Page } from "@playwright/test";
import { expect, kHostile, kPin, type Shop, test as shopTest } from "../shop.ts";

export const kArticles = 100_000;
/** Of those alone, in the order of their codes: A000000 is the first row. */
export const kThoseArticles = "#/list/clsArticulos?order=C%C3%B3digo&filter=C%C3%B3digo%3Alike%3AA0";
export const kHostileArticle = "A000003";

const codeOf = (index: number): string => `A${String(index).padStart(6, "0")}`;

function fill(shop: Shop): void {
  const rows = Array.from({ length: kArticles }, (_, index) =>
    `${codeOf(index)};Artículo número ${index};${(index % 1000 / 100).toFixed(2).replace(".", ",")};21`);
  const file = join(shop.folder, "many.csv");
  writeFileSync(file, ["Codigo;Descripcion;Tarifa_A;Impuesto", ...rows, ""].join("\n"));
  execFileSync(process.env.TAVELOR!, ["--in", join(shop.folder, "shop"), "import", "articles", file]);
}

/** Signs in by the dialog; the owner where nobody else is told. */
export async function signIn(page: Page, shop: Shop, employee = "1"): Promise<void> {
  await page.goto(shop.address);
  const dialog = page.locator("dialog.sign-in");
  await expect(dialog).toBeVisible();
  await dialog.getByLabel("Empleado").selectOption(employee);
  await dialog.locator("input.pin").fill(kPin);
  await page.keyboard.press("Enter");
  await expect(dialog).toBeHidden();
}

/** Asks the server as the pages do. */
export async function call(page: Page, method: string, path: string, body?: unknown): Promise<{ status: number; body: any }> {
  return page.evaluate(async ([verb, where, what]) => {
    const { token } = await (await fetch("/api/v1/session")).json();
    const answer = await fetch(`/api/v1${where}`, {
      method: verb as string,
      headers: { "Content-Type": "application/json", "X-Tavelor-Token": token },
      ...(what === null ? {} : { body: JSON.stringify(what) }),
    });
    return { status: answer.status, body: await answer.json() };
  }, [method, path, body ?? null] as const);
}

export async function made(page: Page, name: string, values: Record<string, unknown>): Promise<void> {
  const answer = await call(page, "POST", `/classes/${name}/records`, { values });
  expect(answer.status, JSON.stringify(answer.body)).toBe(201);
}

export async function sold(page: Page, code = codeOf(1)): Promise<void> {
  const { tills } = (await call(page, "GET", "/session")).body;
  const answer = await call(page, "POST", "/sales", {
    key: crypto.randomUUID(), till: tills[0].code, customer: "", name: "", payment: "1", delivered: 5, comment: "",
    lines: [{ code, quantity: 1, price: 1.1 }],
  });
  expect(answer.status, JSON.stringify(answer.body)).toBe(201);
}

/** What the pages are to show: a customer, a supplier, a ticket that was closed, a text that would do harm. */
async function open(page: Page): Promise<void> {
  await made(page, "ClsClientes", { Código: "00001", Empresa: "Bar Pepe SL", Nombre: "Bar Pepe", Población: "Sevilla", Activo: 1 });
  await made(page, "ClsProveedores", { Código: "401", Empresa: "Conserves del Nord SA", Población: "Gijón" });
  const key = encodeURIComponent(JSON.stringify([kHostileArticle]));
  const { body: { key: told, values } } = await call(page, "GET", `/classes/clsArticulos/record?key=${key}`);
  const changed = await call(page, "PATCH", "/classes/clsArticulos/record", { key: told, original: values, values: { Descripción: kHostile } });
  expect(changed.status, JSON.stringify(changed.body)).toBe(200);
  await sold(page);
  await sold(page, kHostileArticle);
  const { tills } = (await call(page, "GET", "/session")).body;
  const closed = await call(page, "POST", "/closings", { till: tills[0].code, counted: 2 });
  expect(closed.status, JSON.stringify(closed.body)).toBe(201);
}

export const test = shopTest.extend<{ office: Page }, { filled: Shop }>({
  filled: [async ({ shop, browser }, use) => {
    fill(shop);
    const page = await browser.newPage();
    await signIn(page, shop);
    await open(page);
    await page.close();
    await use(shop);
  }, { scope: "worker", timeout: 120_000 }],
  office: async ({ page, filled }, use) => {
    await signIn(page, filled);
    await use(page);
    expect(await page.evaluate(() => "harmed" in window), "a text of the database ran").toBe(false);
  },
});

/** Somebody else at another computer. */
export async function another(browser: Browser, shop: Shop): Promise<Page> {
  const page = await (await browser.newContext({ locale: "es-ES" })).newPage();
  await signIn(page, shop);
  return page;
}

/** Shows a page of the office in the one that is open. */
export const show = async (page: Page, hash: string): Promise<void> => {
  await page.goto(new URL(hash, page.url()).href);
};

export const form = (name: string, key: unknown): string =>
  `#/list/${name}/record?key=${encodeURIComponent(JSON.stringify(key))}`;

export { expect, kHostile, kPin };
