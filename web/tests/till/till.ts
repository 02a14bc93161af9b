// SPDX-License-Identifier: MIT
// What whoever stands at a till does, by keyboard.
import { expect, type Page } from "@playwright/test";
import { kPin, type Shop } from "../shop.ts";

export class Till {
  constructor(readonly page: Page, readonly shop: Shop) {}

  async open(till = "001", employee = "1"): Promise<void> {
    await this.page.addInitScript((code) => localStorage.getItem("tavelor.till") ?? localStorage.setItem("tavelor.till", code), till);
    await this.page.goto(`${this.shop.address}/till`);
    await this.signIn(employee);
  }
  async signIn(employee = "1"): Promise<void> {
    const pin = this.page.locator(".pin");
    await expect(pin.or(this.page.locator("#search")).first()).toBeVisible();
    if (!(await pin.isVisible())) return;
    await this.page.locator("dialog select").selectOption(employee);
    await pin.focus();
    await this.type(kPin);
    await this.press("Enter");
    await expect(pin).toHaveCount(0);
    await expect(this.page.locator("#search")).toBeFocused();
  }
  press(key: string): Promise<void> {
    return this.page.keyboard.press(key);
  }
  /** As a hand does, and no scanner. */
  type(text: string): Promise<void> {
    return this.page.keyboard.type(text, { delay: 45 });
  }
  /** As a scanner does. */
  async scan(code: string): Promise<void> {
    await this.page.keyboard.type(code);
    await this.press("Enter");
  }
  async add(text: string, lines: number): Promise<void> {
    await this.type(text);
    await this.press("Enter");
    await this.hasLines(lines);
  }
  hasLines(lines: number): Promise<void> {
    return expect(this.page.locator(".lines tbody tr")).toHaveCount(lines);
  }
  hasTotal(total: string): Promise<void> {
    return expect(this.page.locator("#total")).toHaveText(total.replace(" ", "\u00a0"));
  }
  get said() {
    return this.page.locator(".said");
  }
  get last() {
    return this.page.locator(".last");
  }
  /** Pays in cash and gives the ticket's number. */
  async payCash(delivered = ""): Promise<number> {
    await this.press("F12");
    if (delivered !== "") await this.type(delivered);
    await this.press("Enter");
    return this.ticket();
  }
  async ticket(): Promise<number> {
    await expect(this.last).toContainText(/Ticket \d+/);
    return Number(/Ticket (\d+)/.exec(await this.last.innerText())?.[1]);
  }
  /** What the server has: its tickets of today. */
  async tickets(): Promise<{ number: number; total: number; key: string }[]> {
    return this.page.evaluate(async () => {
      const { today } = (await (await fetch("/api/v1/session")).json()) as { today: string };
      const answer = await fetch(`/api/v1/tickets?day=${today}&limit=500`);
      return ((await answer.json()) as { tickets: { number: number; total: number; key: string }[] }).tickets;
    });
  }
}
