// SPDX-License-Identifier: MIT
export default function setup(): void {}
