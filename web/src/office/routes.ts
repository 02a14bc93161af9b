// SPDX-License-Identifier: MIT
// Where the office stands: the part of the address behind "#", so that every page can be kept and sent.
import { useEffect, useState } from "preact/hooks";

/** "#/list/ClsBancos?mode=todos" is the path ["list", "ClsBancos"] and its query. */
export interface Route {
  path: string[];
  query: URLSearchParams;
}

export function routeOf(hash: string): Route {
  const [path = "", query = ""] = hash.replace(/^#\/?/, "").split(/\?(.*)/s);
  return { path: path.split("/").filter((part) => part !== "").map(decoded), query: new URLSearchParams(query) };
}

function decoded(part: string): string {
  try {
    return decodeURIComponent(part);
  } catch {
    return part; // typed by hand
  }
}

/** The address of a page: href`/article/${code}` escapes what is put in. */
export const href = (parts: TemplateStringsArray, ...values: (string | number)[]): string =>
  "#" + parts.reduce((path, part, index) => path + encodeURIComponent(String(values[index - 1])) + part);

export const go = (address: string): void => {
  location.hash = address;
};

/** The same page under an address that tells more of it, without a step in the history. */
export const tellAddress = (address: string): void => history.replaceState(null, "", address);

// A form with changes that are not stored asks before it is left.
let mayLeave: () => boolean = () => true;
export const askBeforeLeaving = (question: () => boolean): (() => void) => {
  mayLeave = question;
  return () => {
    if (mayLeave === question) mayLeave = () => true;
  };
};

export function useRoute(): Route {
  const [route, setRoute] = useState(() => routeOf(location.hash));
  useEffect(() => {
    let shown = location.hash;
    const changed = (): void => {
      if (location.hash !== shown && !mayLeave()) {
        history.pushState(null, "", shown || "#/");
        return;
      }
      shown = location.hash;
      setRoute(routeOf(shown));
    };
    addEventListener("hashchange", changed);
    return () => removeEventListener("hashchange", changed);
  }, []);
  return route;
}
