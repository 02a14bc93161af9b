// SPDX-License-Identifier: MIT
// A value that pages look at and are drawn again for.
import { useEffect, useState } from "preact/hooks";

export interface Store<Value> {
  get(): Value;
  set(value: Value): void;
  update(change: (value: Value) => Value): void;
  watch(watcher: (value: Value) => void): () => void;
}

export function store<Value>(first: Value): Store<Value> {
  let value = first;
  const watchers = new Set<(value: Value) => void>();
  const set = (next: Value) => {
    if (next === value) return;
    value = next;
    for (const watcher of [...watchers]) watcher(value);
  };
  return {
    get: () => value,
    set,
    update: (change) => set(change(value)),
    watch: (watcher) => {
      watchers.add(watcher);
      return () => watchers.delete(watcher);
    },
  };
}

/** The value of a store, in a component. */
export function useStore<Value>(of: Store<Value>): Value {
  const [value, setValue] = useState(of.get());
  useEffect(() => {
    setValue(of.get()); // it may have changed between drawing and now
    return of.watch((next) => setValue(next));
  }, [of]);
  return value;
}
