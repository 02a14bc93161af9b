// SPDX-License-Identifier: MIT
// A server of the pages' own tests where the program is not built: dist/ and as much of a shop as a till
// needs. stand-in PORT FILE: sales lie in the file, so that it may be killed.
import { createServer, type IncomingMessage, type ServerResponse } from "node:http";
import { existsSync, readFileSync, writeFileSync } from "node:fs";
import { amountOf, discounted, fromNumber, toNumber } from "../src/shared/money.ts";

const port = Number(process.argv[2] ?? 8099);
const file = process.argv[3] ?? "";
const kPolicy = "default-src 'self'; object-src 'none'; frame-ancestors 'none'; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'";
const manifest = JSON.parse(readFileSync("dist/manifest.json", "utf8")) as { path: string; file: string; type: string }[];
const articles = [
  { code: "PAN001", description: "Barra de pan", price: 1.1, tax: 4, family: "PAN", stock: 40 },
  { code: "LEC001", description: "Leche entera 1 l", price: 0.95, tax: 4, family: "LAC", stock: 12 },
  { code: "QUE001", description: "Queso curado de oveja", price: 18.4, tax: 4, family: "LAC", stock: 3.25 },
  { code: "VIN001", description: "Vino tinto crianza", price: 6.75, tax: 21, family: "BEB", stock: 24 },
  { code: "8410000000017", description: "Aceite de oliva virgen extra, botella de 75 cl", price: 9.9, tax: 4, family: "ACE", stock: 8 },
];
const customers = [{ code: "00001", name: "Bar Núñez <img src=x onerror=alert(1)>", place: "Reus", fiscalNumber: "12345678Z", phone: "977000000", tariff: "A" }];
interface Sold { ticket: number; body: string; total: number; lines: Quoted[]; returns: number[]; returnOf?: number }
const sales = new Map<string, Sold>(file !== "" && existsSync(file) ? JSON.parse(readFileSync(file, "utf8")) as [string, Sold][] : []);
const store = () => file !== "" && writeFileSync(file, JSON.stringify([...sales]));
const held: { id: number; body: Record<string, unknown> }[] = [];
let signedIn = sales.size > 0; // who was signed in still is
let heldCount = 0;

interface Asked { code: string; quantity: number; price?: number; discount?: number }
type Quoted = ReturnType<typeof quoted>;
function quoted(line: Asked) {
  const article = articles.find(({ code }) => code === line.code);
  const price = line.price ?? article?.price ?? 0;
  const discount = line.discount ?? 0;
  const amount = toNumber(amountOf(fromNumber(line.quantity), discounted(fromNumber(price), fromNumber(discount))));
  return { description: article?.description ?? "", family: article?.family ?? "", lot: "", surcharge: 0, tax: article?.tax ?? 21, ...line, price, discount, amount };
}
const totalOf = (lines: Quoted[]) => Math.round(100 * lines.reduce((sum, { amount }) => sum + amount, 0)) / 100;
const session = () => ({
  employee: signedIn ? { code: "1", name: "Núria" } : null, role: "owner", token: "x",
  rights: signedIn ? ["till.sell", "till.price", "till.discount", "till.return", "till.credit", "till.close"] : [],
  shop: { name: "Colmado Rius" }, locale: { language: "es", decimal: ",", group: ".", currency: "€", dateOrder: "dmy" }, today: "2026-11-23",
  tills: [{ code: "01", name: "Caja 1" }, { code: "02", name: "Caja 2" }],
  payments: [{ code: "1", name: "Contado", isCash: true, isOnCredit: false }, { code: "2", name: "Tarjeta", isCash: false, isOnCredit: false }, { code: "4", name: "Crédito", isCash: false, isOnCredit: true }],
  taxes: [], tariffs: [{ code: "A", name: "General" }], employees: [{ code: "1", name: "Núria" }], version: "1",
});

function api(method: string, url: URL, body: Record<string, unknown>): [number, unknown] {
  const path = url.pathname.replace("/api/v1", "");
  const words = (url.searchParams.get("q") ?? "").toLowerCase().split(" ");
  if (path === "/session") {
    if (method === "POST" && body.pin !== "4711") return [401, { error: { kind: "signedOut", message: "", left: 3 } }];
    if (method !== "GET") signedIn = method === "POST";
    return [200, session()];
  }
  if (!signedIn) return [401, { error: { kind: "signedOut", message: "Nobody is signed in." } }];
  if (path === "/articles/search") return [200, { articles: articles.filter(({ code, description }) => words.every((word) => `${code} ${description}`.toLowerCase().includes(word))) }];
  if (path.startsWith("/articles/scan/")) {
    const article = articles.find(({ code }) => code === decodeURIComponent(path.split("/")[3]!));
    return article ? [200, { article, quantity: 1 }] : [404, { error: { kind: "missing", message: "No article has this code." } }];
  }
  if (path === "/customers/search") return [200, { customers }];
  if (path.startsWith("/customers/")) return [200, { customer: customers[0], account: { balance: 12.5, limit: 300, blocked: false, active: true } }];
  if (path === "/till/quote") return [200, { lines: (body.lines as Asked[]).map(quoted) }];
  if (path === "/sales") {
    const key = body.key as string;
    const before = sales.get(key);
    const text = JSON.stringify(body);
    if (before && before.body !== text) return [409, { error: { kind: "conflict", message: "Another sale has this key." } }];
    const lines = (body.lines as Asked[]).map(quoted);
    const wrong = lines.findIndex(({ quantity }) => quantity > 1000);
    if (wrong >= 0) return [422, { error: { kind: "refused", message: "The sale is refused.", faults: [{ line: wrong + 1, code: lines[wrong]!.code, reason: "the quantity is too large" }] } }];
    const sale = before ?? { ticket: sales.size + 1, body: text, total: totalOf(lines), lines, returns: [] };
    sales.set(key, sale);
    store();
    return [before ? 200 : 201, { ticket: sale.ticket, key, total: sale.total, change: 0, receipt: `/print/ticket/${sale.ticket}`, ...(before ? { wasThere: true } : {}) }];
  }
  if (path === "/held" && method === "GET") return [200, { held: held.map((each) => ({ id: each.id, label: each.body.label, till: each.body.till, time: "10:32" })) }];
  if (path === "/held") return [201, { id: held[held.push({ id: ++heldCount, body }) - 1]!.id }];
  if (path.startsWith("/held/")) {
    const index = held.findIndex(({ id }) => id === Number(path.split("/")[2]));
    return index < 0 ? [409, { error: { kind: "conflict", message: "Taken." } }] : [200, held.splice(index, 1)[0]!.body];
  }
  const listed = () => [...sales.values()].map(({ ticket, total }) => ({ number: ticket, day: "2026-11-23", time: "10:32", name: "", total })).reverse();
  if (path === "/tickets") return [200, { tickets: listed() }];
  if (path.startsWith("/tickets/")) {
    const sale = [...sales.values()].find(({ ticket }) => ticket === Number(path.split("/")[2]));
    return sale ? [200, { number: sale.ticket, day: "2026-11-23", time: "10:32", payment: "1", total: sale.total, returns: sale.returns.map((number) => ({ number })), returnOf: sale.returnOf ?? null,
      lines: sale.lines.map((line, index) => ({ line: index + 1, ...line, returned: sale.returns.length > 0 ? line.quantity : 0 })) }] : [404, { error: { kind: "missing", message: "" } }];
  }
  if (path === "/returns") {
    const sale = [...sales.values()].find(({ ticket }) => ticket === body.ticket)!;
    if (sale.returns.length !== body.earlier) return [409, { error: { kind: "conflict", message: "" } }];
    const ticket = sales.size + 1;
    sales.set(`return ${ticket}`, { ticket, body: "", total: -sale.total, lines: [], returns: [], returnOf: sale.ticket });
    sale.returns.push(ticket);
    store();
    return [201, { ticket, total: -sale.total, receipt: `/print/ticket/${ticket}` }];
  }
  const cash = [...sales.values()].reduce((sum, { total }) => sum + total, 0);
  if (path.startsWith("/tills/")) return [200, { tickets: sales.size, total: cash, payments: [{ code: "1", name: "Contado", total: cash, isCash: true }], opening: 0, expected: cash }];
  if (path === "/closings") return [201, { closing: 1, total: cash, expected: cash, counted: body.counted, difference: (body.counted as number) - cash, slip: ["Colmado Rius", "Cierre de Caja 1", `Total Cierre   ${cash}`] }];
  return [404, { error: { kind: "missing", message: path } }];
}

createServer((request: IncomingMessage, response: ServerResponse) => {
  const url = new URL(request.url ?? "/", `http://localhost:${port}`);
  let text = "";
  request.on("data", (part: Buffer) => (text += part.toString()));
  request.on("end", () => {
    if (url.pathname.startsWith("/api/")) {
      const [status, body] = api(request.method ?? "GET", url, text === "" ? {} : JSON.parse(text) as Record<string, unknown>);
      response.writeHead(status, { "Content-Type": "application/json" }).end(JSON.stringify(body));
    } else if (url.pathname.startsWith("/print/")) {
      response.writeHead(200, { "Content-Type": "text/html" }).end(`<!doctype html><title>T</title><p>${url.pathname}`);
    } else {
      const entry = manifest.find(({ path }) => path === url.pathname);
      if (!entry) response.writeHead(404).end();
      else response.writeHead(200, { "Content-Type": entry.type, "Content-Security-Policy": kPolicy }).end(readFileSync(`dist/${entry.file}`));
    }
  });
}).listen(port, "127.0.0.1");
