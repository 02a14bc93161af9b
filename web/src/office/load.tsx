// SPDX-License-Identifier: MIT
// What a page asks the server for, with what is shown until it is there or where it does not come.
import type { ComponentChildren } from "preact";
import { useCallback, useEffect, useRef, useState } from "preact/hooks";
import { get, RequestError } from "../shared/api.ts";
import { noted } from "../shared/session.ts";
import { t } from "./texts.ts";

export interface Asked<Answer> {
  value: Answer | undefined;
  error: unknown;
  /** Asks once more; what is shown stays until the answer is there. */
  again: () => void;
}

/** What `load` gives for a key, anew when the key changes; nothing is loaded without one. */
export function useLoaded<Answer>(key: string | undefined, load: (key: string, signal: AbortSignal) => Promise<Answer>): Asked<Answer> {
  const [state, setState] = useState<{ key?: string | undefined; value?: Answer; error?: unknown }>({});
  const [count, setCount] = useState(0);
  useEffect(() => {
    if (key === undefined) return;
    const request = new AbortController();
    load(key, request.signal).then(
      (value) => setState({ key, value }),
      (error: unknown) => {
        if (request.signal.aborted) return;
        noted(error);
        setState((old) => (old.key === key && old.value !== undefined ? { ...old, error } : { key, error }));
      },
    );
    return () => request.abort();
  }, [key, count]);
  const again = useCallback(() => setCount((old) => old + 1), []);
  const isOfKey = state.key === key;
  return { value: isOfKey ? state.value : undefined, error: isOfKey ? state.error : undefined, again };
}

/** The answer of a path. */
export const useAsked = <Answer,>(path: string | undefined): Asked<Answer> => useLoaded<Answer>(path, get<Answer>);

/** Calls the latest `action` when `pause` milliseconds have passed without a further call. */
export function useLater(action: () => void, pause: number): () => void {
  const latest = useRef(action);
  latest.current = action;
  const timer = useRef(0);
  useEffect(() => () => clearTimeout(timer.current), []);
  return useCallback(() => {
    clearTimeout(timer.current);
    timer.current = window.setTimeout(() => latest.current(), pause);
  }, [pause]);
}

/** What went wrong, for people. */
export function reasonOf(error: unknown): string {
  if (!(error instanceof RequestError)) return error instanceof Error ? error.message : String(error);
  if (error.status === 0) return t("noServer");
  if (error.status === 403) return t("notAllowed", { message: error.message });
  if (error.status === 404 && error.message === "") return t("notThere");
  const faults = error.faults.map(({ field, reason }) => (field ? `${field}: ${reason}` : reason));
  return [error.message || t("failed", { status: error.status }), ...faults.filter((text) => text !== error.message)].join("\n");
}

export function Trouble({ error, again }: { error: unknown; again?: () => void }) {
  return (
    <div class="note bad row" role="alert">
      <span class="lines">{reasonOf(error)}</span>
      {again && <button type="button" class="button" onClick={again}>{t("tryAgain")}</button>}
    </div>
  );
}

/** The answer as `children` draw it, or why it is not there. */
export function Show<Answer>({ asked, children }: { asked: Asked<Answer>; children: (value: Answer) => ComponentChildren }) {
  return (
    <>
      {asked.error !== undefined && <Trouble error={asked.error} again={asked.again} />}
      {asked.value !== undefined ? children(asked.value)
        : asked.error === undefined && <p class="soft waiting" role="status">{t("waiting")}</p>}
    </>
  );
}
