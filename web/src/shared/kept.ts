// SPDX-License-Identifier: MIT
// What the browser keeps for a page over a reload and a restart: tables of a database of its own.

let opened: Promise<IDBDatabase> | undefined;

const kTables = ["drafts", "outbox", "articles"] as const;
export type KeptTable = (typeof kTables)[number];

function database(): Promise<IDBDatabase> {
  opened ??= new Promise((resolve, reject) => {
    const request = indexedDB.open("tavelor", 1);
    request.onupgradeneeded = () => kTables.forEach((table) => request.result.createObjectStore(table));
    request.onsuccess = () => resolve(request.result);
    request.onerror = () => reject(request.error);
  });
  return opened;
}

/** What a change does with the tables that it names; all of it is kept, or nothing. */
export interface Change {
  put(table: KeptTable, key: string, value: unknown): void;
  remove(table: KeptTable, key: string): void;
}

/** Resolves once it is on the disk, and not before: what is sold must not be lost with the power. */
export async function keep(tables: KeptTable[], change: (change: Change) => void): Promise<void> {
  const base = await database();
  await new Promise<void>((resolve, reject) => {
    const transaction = base.transaction(tables, "readwrite", { durability: "strict" });
    transaction.oncomplete = () => resolve();
    transaction.onabort = () => reject(transaction.error);
    change({
      put: (table, key, value) => void transaction.objectStore(table).put(value, key),
      remove: (table, key) => void transaction.objectStore(table).delete(key),
    });
  });
}

export async function keptOne<Value>(table: KeptTable, key: string): Promise<Value | undefined> {
  return asked<Value | undefined>((await database()).transaction(table).objectStore(table).get(key));
}

/** With their keys, by key. */
export async function keptAll<Value>(table: KeptTable): Promise<[string, Value][]> {
  const all = (await database()).transaction(table).objectStore(table);
  const [keys, values] = await Promise.all([asked<IDBValidKey[]>(all.getAllKeys()), asked<Value[]>(all.getAll())]);
  return keys.map((key, index) => [String(key), values[index]!]);
}

function asked<Value>(request: IDBRequest): Promise<Value> {
  return new Promise((resolve, reject) => {
    request.onsuccess = () => resolve(request.result as Value);
    request.onerror = () => reject(request.error);
  });
}

/** Holds a name that one page at a time may hold. Where the browser has no locks, all do. */
export async function alone(name: string, work: () => Promise<void>): Promise<void> {
  if (!("locks" in navigator)) return work();
  await navigator.locks.request(name, work);
}

/** Takes a name until the page ends; false where another page has it. */
export function takeName(name: string, patience: number): Promise<boolean> {
  if (!("locks" in navigator)) return Promise.resolve(true);
  return new Promise((resolve) => {
    navigator.locks.request(name, { signal: AbortSignal.timeout(patience) }, () => {
      resolve(true);
      return new Promise<never>(() => undefined);
    }).catch(() => resolve(false));
  });
}

/** The names that some page has. */
export async function takenNames(): Promise<Set<string>> {
  if (!("locks" in navigator)) return new Set();
  const { held = [] } = await navigator.locks.query();
  return new Set(held.map(({ name }) => name ?? ""));
}

/** A key that nobody else makes. `crypto.randomUUID` is there only on a safe line. */
export function newKey(): string {
  const bytes = crypto.getRandomValues(new Uint8Array(16));
  bytes[6] = (bytes[6]! & 0x0f) | 0x40;
  bytes[8] = (bytes[8]! & 0x3f) | 0x80;
  const hex = Array.from(bytes, (byte) => byte.toString(16).padStart(2, "0")).join("");
  return hex.replace(/^(.{8})(.{4})(.{4})(.{4})/, "$1-$2-$3-$4-");
}
