// SPDX-License-Identifier: MIT
// The lists by what they are about: the beginning of a class's name tells.
import type { OfficeText } from "./texts.ts";

const kGroups: { title: OfficeText; names: RegExp }[] = [
  { title: "groupArticles", names: /^clsArticulos/i },
  { title: "groupCustomers", names: /^ClsClientes/i },
  { title: "groupSuppliers", names: /^ClsProveedores/i },
  { title: "groupSales", names: /^(ClsTickets|ClsCierres)/i },
  { title: "groupStaff", names: /^(ClsEmpleados|ClsCitas)/i },
  { title: "groupNumbering", names: /^clsNumeradores/i },
  { title: "groupCatalogues", names: /^/ },
];

/** Those of each group that has any, in the order in which they came. */
export function grouped<Item extends { name: string }>(items: Item[]): { title: OfficeText; items: Item[] }[] {
  const groups = kGroups.map(({ title }) => ({ title, items: [] as Item[] }));
  for (const item of items) groups[kGroups.findIndex(({ names }) => names.test(item.name))]!.items.push(item);
  return groups.filter((group) => group.items.length > 0);
}
