// SPDX-License-Identifier: MIT
// Money and quantities as whole ten-thousandths, as the shop computes them: an amount is quantity by net
// price, in whole cents, half a cent away from zero.

/** So many ten-thousandths: of a euro, of a unit, of a percent. A bigint, as products outgrow a number. */
export type Fixed = bigint;

export const kOne: Fixed = 10_000n;
const kCent: Fixed = 100n;

/** The quotient, half away from zero. The divisor is positive. */
export function divided(dividend: bigint, divisor: bigint): bigint {
  const half = divisor / 2n;
  return dividend < 0n ? -((-dividend + half) / divisor) : (dividend + half) / divisor;
}

/** To whole cents, half away from zero. */
export const toCents = (value: Fixed): Fixed => divided(value, kCent) * kCent;

/** A price less so many percent, to four decimals. */
export const discounted = (price: Fixed, discount: Fixed): Fixed =>
  discount === 0n ? price : divided(price * (100n * kOne - discount), 100n * kOne);

/** Quantity by price, in whole cents. */
export const amountOf = (quantity: Fixed, price: Fixed): Fixed =>
  divided(quantity * price, kOne * kCent) * kCent;

/** What of a sum with tax is tax, in whole cents; the base is the rest. The rate is in percent. */
export const taxWithin = (sum: Fixed, rate: Fixed): Fixed =>
  divided(sum * rate, (100n * kOne + rate) * kCent) * kCent;

/** So many percent of a sum, in whole cents. */
export const percentOf = (sum: Fixed, rate: Fixed): Fixed => divided(sum * rate, 100n * kOne * kCent) * kCent;

/** From a number of the server, which has four decimals at most. */
export function fromNumber(value: number): Fixed {
  // By its text: 1.1 by ten thousand is 11000.000000000002, and large numbers lose their last digits.
  const [digits = "0", exponent] = Math.abs(value).toString().split("e");
  if (exponent !== undefined) return BigInt(Math.round(value * Number(kOne)));
  const [whole = "0", decimals = ""] = digits.split(".");
  const last = decimals.length > 4 && decimals.charCodeAt(4) >= 0x35 ? 1n : 0n;
  const result = BigInt(whole) * kOne + BigInt(decimals.slice(0, 4).padEnd(4, "0")) + last;
  return value < 0 ? -result : result;
}

/** As a number for the server: the nearest one to the decimal, which reads back as the same. */
export const toNumber = (value: Fixed): number => Number(value) / Number(kOne);

/** How the shop's country writes numbers. */
export interface NumberFormat {
  decimal: string;
  group: string;
  currency: string;
}

/** With as many decimals as asked for at least, and no more than it has: "1.914,865". */
export function written(value: Fixed, format: NumberFormat, least = 0): string {
  const positive = value < 0n ? -value : value;
  const whole = (positive / kOne).toString().replace(/\B(?=(\d{3})+$)/g, format.group);
  let decimals = (positive % kOne).toString().padStart(4, "0");
  while (decimals.length > least && decimals.endsWith("0")) decimals = decimals.slice(0, -1);
  return (value < 0n ? "-" : "") + whole + (decimals === "" ? "" : format.decimal + decimals);
}

/** Two decimals and the currency: "4.037,90 €". */
export const writtenMoney = (value: Fixed, format: NumberFormat): string =>
  `${written(toCents(value), format, 2)}\u00a0${format.currency}`;

/**
 * What a person typed, or undefined where it is no number. Either mark is taken for the decimal one where
 * it stands alone and cannot part thousands; with both, the last is.
 */
export function read(text: string, format: NumberFormat): Fixed | undefined {
  let plain = text.replace(/[\s\u00a0]/g, "").replace(format.currency, "");
  if (plain.includes(format.decimal) || /^-?\d{1,3}(\.\d{3}){2,}$/.test(plain.replaceAll(format.group, "."))) {
    plain = plain.replaceAll(format.group, "").replace(format.decimal, ".");
  } else if (format.group !== ".") {
    plain = plain.replaceAll(format.group, ".");
  }
  const parts = /^(-?)(\d{0,12})(?:\.(\d{0,4}))?$/.exec(plain);
  if (!parts || (!parts[2] && !parts[3])) return undefined;
  const value = BigInt(parts[2] || "0") * kOne + BigInt((parts[3] ?? "").padEnd(4, "0"));
  return parts[1] ? -value : value;
}
