// SPDX-License-Identifier: MIT
// What the builder takes besides scripts.
declare module "*.css";
