// SPDX-License-Identifier: MIT
// What every test of the office has: somebody signed in, and an eye on what a page must never do.
import { type Browser, expect, type Page, test as base } from "@playwright/test";

export const address = (): string => process.env.TAVELOR_URL!;
export const kPin = "1234";
export const kEvil = `<img src=x onerror="window.hit=1"><script>window.hit=1</script>"'&amp;`;

/** Watches a page: what it asks of other machines, and what the browser refuses or complains about. */
function watched(page: Page): string[] {
  const faults: string[] = [];
  page.on("request", (request) => {
    const url = new URL(request.url());
    if (url.protocol.startsWith("http") && url.origin !== new URL(address()).origin) faults.push(`asked ${request.url()}`);
  });
  page.on("pageerror", (error) => faults.push(`threw ${error.message}`));
  page.on("console", (message) => {
    // An answer that refuses is told in the console too; what a page does with it is tested.
    if (message.type() === "error" && !message.text().startsWith("Failed to load resource")) faults.push(message.text());
  });
  return faults;
}

/** Signed in by the dialog, at the start page. */
export async function signIn(page: Page, employee?: string): Promise<void> {
  await page.goto(address());
  await expect(page.locator("dialog.sign-in")).toBeVisible();
  if (employee) await page.locator("dialog.sign-in select").selectOption({ label: employee });
  await page.locator("input.pin").fill(kPin);
  await page.keyboard.press("Enter");
  await expect(page.locator("dialog.sign-in")).toBeHidden();
}

export const test = base.extend<{ office: Page }>({
  office: async ({ page }, use) => {
    const faults = watched(page);
    await signIn(page);
    await use(page);
    expect(await page.evaluate(() => "hit" in window), "a text of the database ran").toBe(false);
    expect(faults).toEqual([]);
  },
});

/** Somebody else at another computer. */
export async function another(browser: Browser): Promise<Page> {
  const page = await (await browser.newContext({ locale: "es-ES" })).newPage();
  await signIn(page);
  return page;
}

export const open = async (page: Page, hash: string): Promise<void> => {
  await page.goto(`${address()}/${hash}`);
};

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

/** The record of a class with these values, made where it is not there. */
export async function made(page: Page, name: string, values: Record<string, unknown>): Promise<void> {
  const answer = await call(page, "POST", `/classes/${name}/records`, { values });
  expect(answer.status, JSON.stringify(answer.body)).toBe(201);
}

export const form = (name: string, key: Record<string, unknown>): string =>
  `#/list/${name}/record?key=${encodeURIComponent(JSON.stringify(key))}`;

export { expect };
