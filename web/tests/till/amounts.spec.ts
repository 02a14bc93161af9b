// SPDX-License-Identifier: MIT
// The page computes as the server does: random lines against what the server quotes.
import { expect, test } from "../shop.ts";
import { Till } from "./till.ts";
import { amountOf, discounted, fromNumber, toNumber } from "../../src/shared/money.ts";

// A small generator, so that a failure can be seen again.
function generator(seed: number): (below: number) => number {
  let state = seed;
  return (below) => {
    state = (Math.imul(state, 1_664_525) + 1_013_904_223) >>> 0;
    return Math.floor((state / 2 ** 32) * below);
  };
}

test("2,000 random lines come to the same cents here and there", async ({ page, shop }) => {
  const till = new Till(page, shop);
  await till.open();
  const random = generator(20261123);
  const lines = Array.from({ length: 2000 }, () => {
    const scale = [1, 10, 100, 1000][random(4)]!;
    return {
      code: "PAN001", quantity: (random(200_000) + 1) / scale * (random(8) === 0 ? -1 : 1),
      price: (random(1_000_000) + 1) / [1, 100, 100, 10_000][random(4)]!,
      discount: random(3) === 0 ? random(10_000) / 100 : 0, tax: [4, 10, 21][random(3)]!,
    };
  }).filter(({ quantity, price }) => Math.abs(quantity * price) < 900_000_000);
  for (let start = 0; start < lines.length; start += 200) {
    const asked = lines.slice(start, start + 200);
    const answer = await page.evaluate(async (wanted) => {
      const { token } = (await (await fetch("/api/v1/session")).json()) as { token: string };
      const got = await fetch("/api/v1/till/quote", {
        method: "POST", headers: { "Content-Type": "application/json", "X-Tavelor-Token": token },
        body: JSON.stringify({ till: "001", customer: "", lines: wanted }),
      });
      return (await got.json()) as { lines: { amount: number; reason?: string }[] };
    }, asked);
    const here = asked.map((line) => toNumber(amountOf(fromNumber(line.quantity), discounted(fromNumber(line.price), fromNumber(line.discount)))));
    expect(answer.lines.map(({ amount }, index) => [asked[index], amount])).toEqual(here.map((amount, index) => [asked[index], amount]));
  }
});
