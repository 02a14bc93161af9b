// SPDX-License-Identifier: MIT
// The texts of a page in the language that is chosen. A page gives its tables once, one a language; both
// have the same keys, which the compiler checks.

export type Language = "es" | "en";
export type Table = Record<string, string>;

const kPlace = "tavelor.language";

let language: Language = "es";

/** The language that is shown. */
export const currentLanguage = (): Language => language;

/** The one that was chosen here, if any was: it goes before the shop's own. */
export function chosenLanguage(): Language | undefined {
  const kept = localStorage.getItem(kPlace);
  return kept === "es" || kept === "en" ? kept : undefined;
}

/** Shows this language from now on; the caller draws the page again. */
export function setLanguage(wanted: string, isChoice = false): void {
  language = wanted === "en" ? "en" : "es";
  document.documentElement.lang = language;
  if (isChoice) localStorage.setItem(kPlace, language);
}

/**
 * A function that gives a text by its key, with {places} filled: t("ticketSold", {number: 17}). What is
 * filled in is text and never markup.
 */
export function textsOf<Key extends string>(es: Record<Key, string>, en: Record<Key, string>) {
  return (key: Key, values: Record<string, string | number> = {}): string =>
    (language === "en" ? en : es)[key].replace(/\{(\w+)\}/g, (whole, name: string) =>
      name in values ? String(values[name]) : whole);
}
