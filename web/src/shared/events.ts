// SPDX-License-Identifier: MIT
// What the server tells by itself: sales, returns, closings, changed records. One line for all of a page;
// the browser opens it again when it is cut.

export interface ShopEvents {
  hello: Record<string, unknown>;
  sale: { ticket: number; till: string; total: number; time: string };
  return: { ticket: number; till: string; total: number; time: string };
  closing: { closing: number; till: string; total: number };
  change: { class: string; key: unknown };
}
export type EventName = keyof ShopEvents;

type Listener = (event: unknown) => void;

const listeners = new Map<EventName, Set<Listener>>();
let line: EventSource | undefined;

function opened(): EventSource {
  const source = new EventSource("/api/v1/events");
  for (const name of ["hello", "sale", "return", "closing", "change"] as const) {
    source.addEventListener(name, (message: MessageEvent<string>) => {
      let event: unknown;
      try {
        event = JSON.parse(message.data);
      } catch {
        return; // no event of ours
      }
      for (const listener of listeners.get(name) ?? []) listener(event);
    });
  }
  return source;
}

/** Calls `listener` for each such event until what comes back is called. */
export function listen<Name extends EventName>(name: Name, listener: (event: ShopEvents[Name]) => void): () => void {
  const those = listeners.get(name) ?? new Set();
  listeners.set(name, those);
  those.add(listener as Listener);
  // A line that the server has refused, as nobody was signed in, stays closed for good.
  if (!line || line.readyState === EventSource.CLOSED) line = opened();
  return () => {
    those.delete(listener as Listener);
    if ([...listeners.values()].every((set) => set.size === 0)) {
      line?.close();
      line = undefined;
    }
  };
}
