// SPDX-License-Identifier: MIT
// A shop of its own for the tests of one file, served on a port of its own; it can be killed and started again.
import { type ChildProcess, execFileSync, spawn } from "node:child_process";
import { mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { createServer } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { test as base } from "@playwright/test";

export const kPin = "4711";
/** A text that would do harm if it were taken for markup. */
export const kHostile = `"><img src=x onerror="window.harmed=1"><script>window.harmed=1</script>`;

/** Code, description, price of tariff A, tax. */
const kArticles = [
  ["PAN001", "Barra de pan", "1,10", "4"],
  ["LEC001", "Leche entera 1 l", "0,95", "4"],
  ["QUE001", "Queso curado de oveja", "18,40", "4"],
  ["VIN001", "Vino tinto crianza", "6,75", "21"],
  ["8410000000017", "Aceite de oliva virgen", "9,90", "4"],
  ["MAL001", kHostile, "2,00", "21"],
];

export class Shop {
  readonly folder = mkdtempSync(join(tmpdir(), "tavelor-pages-"));
  private process: ChildProcess | undefined;
  private readonly program = process.env.TAVELOR ?? "../build/release/tools/tavelor";

  private constructor(readonly port: number) {}

  static async open(): Promise<Shop> {
    const shop = new Shop(await freePort());
    shop.make();
    await shop.start();
    return shop;
  }

  get address(): string {
    return `http://127.0.0.1:${this.port}`;
  }

  private run(arguments_: string[], input = ""): string {
    return execFileSync(this.program, arguments_, { encoding: "utf8", input, stdio: ["pipe", "pipe", "inherit"] });
  }

  private make(): void {
    const shop = join(this.folder, "shop");
    this.run(["new", shop]);
    this.run(["seed", shop, "--name", "Colmado Rius", "--nif", "12345678Z"]);
    this.run(["--in", shop, "edit", "ClsCajas", "--add", "Código=002", "Descripción=Caja 2"]);
    const rows = kArticles.map((fields) => fields.map((text) => `"${text.replaceAll('"', '""')}"`).join(";"));
    const file = join(this.folder, "articles.csv");
    writeFileSync(file, ["Codigo;Descripcion;Tarifa_A;Impuesto", ...rows, ""].join("\n"));
    this.run(["--in", shop, "import", "articles", file]);
    this.run(["--in", shop, "edit", "ClsEmpleados", "--add", "Código=1", "Nombre=Núria"]);
    this.run(["--in", shop, "pin", "1", "--role", "owner"], `${kPin}\n`);
    this.run(["--in", shop, "edit", "ClsEmpleados", "--add", "Código=2", "Nombre=Pau"]);
    this.run(["--in", shop, "pin", "2", "--role", "seller"], `${kPin}\n`);
  }

  async start(): Promise<void> {
    const options = ["serve", join(this.folder, "shop"), "--port", String(this.port), "--rate", "0", "--log", "-"];
    this.process = spawn(this.program, options, { stdio: ["ignore", "ignore", "inherit"] });
    for (let tries = 0; tries < 200; ++tries) {
      if (await fetch(`${this.address}/api/v1/session`).then((answer) => answer.ok, () => false)) return;
      await new Promise((resolve) => setTimeout(resolve, 50));
    }
    throw new Error(`nobody answers at ${this.address}`);
  }

  /** As a power cut does it. */
  async kill(): Promise<void> {
    const child = this.process;
    this.process = undefined;
    if (!child || child.exitCode !== null) return;
    const ended = new Promise((resolve) => child.once("exit", resolve));
    child.kill("SIGKILL");
    await ended;
  }

  async close(): Promise<void> {
    await this.kill();
    rmSync(this.folder, { recursive: true, force: true });
  }
}

function freePort(): Promise<number> {
  return new Promise((resolve, reject) => {
    const server = createServer();
    server.once("error", reject);
    server.listen(0, "127.0.0.1", () => {
      const address = server.address();
      server.close(() => (typeof address === "object" && address ? resolve(address.port) : reject(new Error("no port"))));
    });
  });
}

/** Tests with a shop for all of their file. Nothing may be asked of another machine, nor go wrong unseen. */
export const test = base.extend<{ watched: string[] }, { shop: Shop }>({
  shop: [async ({}, use) => {
    const shop = await Shop.open();
    await use(shop);
    await shop.close();
  }, { scope: "worker" }],
  watched: [async ({ context, shop }, use) => {
    const wrong: string[] = [];
    context.on("request", (request) => {
      if (!request.url().startsWith(`${shop.address}/`)) wrong.push(`asked of another machine: ${request.url()}`);
    });
    context.on("console", (message) => {
      if (/Content Security Policy|Trusted/i.test(message.text())) wrong.push(message.text());
    });
    context.on("weberror", (error) => wrong.push(error.error().stack ?? error.error().message));
    await use(wrong);
    base.expect(wrong).toEqual([]);
  }, { auto: true }],
});
export const expect = test.expect;
