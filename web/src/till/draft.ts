// SPDX-License-Identifier: MIT
// Where the draft of this page is kept. A page has a name, which its reload keeps; what a page has left
// that is open no more, the next one takes over.
import { keep, keptAll, keptOne, newKey, takenNames, takeName } from "../shared/kept.ts";
import { store } from "../shared/store.ts";
import { type Draft, kEmpty } from "./sale.ts";

const kPlace = "tavelor.page";
const kPatience = 400; // ms for the page that was here before a reload to be gone

export const draft = store<Draft>(kEmpty);
let name = "";
let writing: Promise<void> = Promise.resolve();

export const draftPlace = (): string => name;

export async function openDraft(): Promise<void> {
  name = sessionStorage.getItem(kPlace) ?? newKey();
  // A page that was doubled brings the name of the other along.
  if (!(await takeName(`tavelor-page-${name}`, kPatience))) {
    name = newKey();
    await takeName(`tavelor-page-${name}`, kPatience);
  }
  sessionStorage.setItem(kPlace, name);
  const mine = await keptOne<Draft>("drafts", name);
  draft.set(mine ?? (await left()) ?? kEmpty);
  draft.watch(write);
  if (!mine && draft.get() !== kEmpty) write(draft.get());
}

async function left(): Promise<Draft | undefined> {
  const taken = await takenNames();
  for (const [page, value] of await keptAll<Draft>("drafts")) {
    if (taken.has(`tavelor-page-${page}`) || value.lines.length === 0) continue;
    await keep(["drafts"], (change) => change.remove("drafts", page));
    return value;
  }
  return undefined;
}

function write(value: Draft): void {
  writing = writing.catch(() => undefined).then(() => keep(["drafts"], (change) => {
    if (value.lines.length === 0 && value.customer === null) change.remove("drafts", name);
    else change.put("drafts", name, value);
  }));
}

/** Once all that was typed is on the disk. */
export const written = (): Promise<void> => writing;
