// SPDX-License-Identifier: MIT
// t("key", {places}): the till's texts.
import { textsOf } from "../shared/texts.ts";
import { en } from "./texts_en.ts";
import { es } from "./texts_es.ts";

export const t = textsOf(es, en);
