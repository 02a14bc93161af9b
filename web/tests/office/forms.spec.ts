// SPDX-License-Identifier: MIT
import { another, call, expect, form, made, show, test } from "./office.ts";

const kBank = "77"; // digits: the class counts on from the greatest code

test.beforeEach(async ({ office }) => {
  const values = { Código: kBank, Descripción: "Caja Rural", Cuenta: "1" };
  const there = await call(office, "GET", `/classes/ClsBancos/record?key=${encodeURIComponent(JSON.stringify([kBank]))}`);
  if (there.status === 404) return made(office, "ClsBancos", values);
  await call(office, "PATCH", "/classes/ClsBancos/record", { key: [kBank], original: there.body.values, values });
});

const field = (page: import("@playwright/test").Page, name: string) => page.locator(`[name="${name}"]`);

test("A record is begun, filled and stored by the keyboard alone", async ({ office }) => {
  await show(office, "#/list/ClsBancos");
  await expect(office.locator("[data-row='0']")).toBeVisible();
  await office.keyboard.press("Insert");
  await expect(field(office, "Descripción")).toBeVisible();
  await field(office, "Descripción").focus();
  await office.keyboard.type("Banco del Teclado");
  await office.keyboard.press("Control+s");
  await expect(office).toHaveURL(/record\?key=/);
  await expect(field(office, "Descripción")).toHaveValue("Banco del Teclado");
});

test("Two who change one field see both values and choose; what one alone changed is his", async ({ office, browser, filled }) => {
  const other = await another(browser, filled);
  await show(office, form("ClsBancos", [kBank]));
  await show(other, form("ClsBancos", [kBank]));
  await field(office, "Descripción").fill("La mía");
  await field(other, "Descripción").fill("La suya");
  await field(other, "Cuenta").fill("2");
  await other.keyboard.press("Control+s");
  await expect(other.getByText("Guardado.")).toBeVisible();
  await expect(office.getByText("Alguien ha cambiado este registro.")).toBeVisible();
  await office.keyboard.press("Control+s");
  const dialog = office.getByRole("dialog", { name: "Otra persona lo ha cambiado" });
  await expect(dialog.getByRole("row").filter({ hasText: "Descripción" })).toContainText("La suya");
  await expect(dialog.getByRole("row").filter({ hasText: "Descripción" })).toContainText("La mía");
  await expect(dialog.getByRole("button", { name: "Guardar lo elegido" })).toBeDisabled();
  await dialog.getByRole("button", { name: "Todo lo mío" }).click();
  await dialog.getByRole("button", { name: "Guardar lo elegido" }).click();
  await expect(office.getByText("Guardado.")).toBeVisible();
  await expect(field(office, "Descripción")).toHaveValue("La mía");
  await expect(field(office, "Cuenta")).toHaveValue("2");
  await other.context().close();
});

test("Theirs can be taken as it is, and nothing is sent for it", async ({ office, browser, filled }) => {
  const other = await another(browser, filled);
  await show(office, form("ClsBancos", [kBank]));
  await field(office, "Descripción").fill("La mía");
  await call(other, "PATCH", "/classes/ClsBancos/record", { key: [kBank], original: {}, values: { Descripción: "De ellos" } });
  await office.keyboard.press("Control+s");
  await office.getByRole("button", { name: "Todo lo suyo" }).click();
  const sent: string[] = [];
  office.on("request", (request) => { if (request.method() !== "GET") sent.push(request.method()); });
  await office.getByRole("button", { name: "Guardar lo elegido" }).click();
  await expect(field(office, "Descripción")).toHaveValue("De ellos");
  expect(sent).toEqual([]);
  await other.context().close();
});

test("A text wider than its column is told at its field, and is not sent", async ({ office }) => {
  await show(office, form("ClsBancos", [kBank]));
  const { columns } = (await call(office, "GET", "/classes/ClsBancos")).body as { columns: { name: string; size: number }[] };
  const { size } = columns.find(({ name }) => name === "Descripción")!;
  const sent: string[] = [];
  office.on("request", (request) => { if (request.method() === "PATCH") sent.push(request.url()); });
  await field(office, "Descripción").fill("x".repeat(size + 1));
  await office.keyboard.press("Control+s");
  await expect(office.locator(".fault")).toContainText(`${size}`);
  await expect(field(office, "Descripción")).toBeFocused();
  expect(sent).toEqual([]);
  await field(office, "Descripción").fill("x".repeat(size));
  await field(office, "Descripción").press("End");
  await office.keyboard.type("y");
  await expect(field(office, "Descripción")).toHaveValue("x".repeat(size));
});

test("Numbers and days are read as the country writes them, and what is none is told", async ({ office }) => {
  await show(office, form("clsArticulos", ["A000007"]));
  await field(office, "Tarifa_A").fill("1.234,50");
  await field(office, "Fecha").fill("3.2.26");
  await field(office, "Fecha").blur();
  await expect(field(office, "Fecha")).toHaveValue("03/02/2026");
  await office.keyboard.press("Control+s");
  await expect(office.getByText("Guardado.")).toBeVisible();
  const read = await call(office, "GET", `/classes/clsArticulos/record?key=${encodeURIComponent('["A000007"]')}`);
  expect(read.body.values.Tarifa_A).toBe(1234.5);
  expect(read.body.values.Fecha).toMatch(/^2026-02-03/);
  await field(office, "Fecha").fill("30/02/2026");
  await office.keyboard.press("Control+s");
  await expect(office.locator(".fault")).toContainText("No es un día");
  await field(office, "Tarifa_A").focus();
  await field(office, "Tarifa_A").selectText();
  await office.keyboard.type("12a");
  await expect(field(office, "Tarifa_A")).toHaveValue("12");
});

test("Changes that are not stored are asked about before the form is left", async ({ office }) => {
  await show(office, form("ClsBancos", [kBank]));
  await field(office, "Descripción").fill("A medias");
  office.once("dialog", (dialog) => void dialog.dismiss());
  await office.getByRole("link", { name: "Hoy" }).click();
  await expect(field(office, "Descripción")).toHaveValue("A medias");
  office.once("dialog", (dialog) => void dialog.accept());
  await office.getByRole("link", { name: "Hoy" }).click();
  await expect(office.getByRole("heading", { name: "Hoy" })).toBeVisible();
});

test("A record is deleted only after a question", async ({ office }) => {
  await made(office, "ClsBancos", { Código: "76", Descripción: "Sobra" });
  await show(office, form("ClsBancos", ["76"]));
  await office.getByRole("button", { name: "Borrar" }).click();
  await office.getByRole("button", { name: "No borrar" }).click();
  await expect(field(office, "Descripción")).toHaveValue("Sobra");
  await office.getByRole("button", { name: "Borrar" }).click();
  await office.getByRole("dialog").getByRole("button", { name: "Borrar", exact: true }).click();
  await expect(office).toHaveURL(/#\/list\/ClsBancos(\?|$)/);
  await show(office, form("ClsBancos", ["76"]));
  await expect(office.getByRole("alert")).toBeVisible();
});
