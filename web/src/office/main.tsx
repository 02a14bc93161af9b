// SPDX-License-Identifier: MIT
// The back office.
import "../shared/base.css";
import { render } from "preact";

const page = document.getElementById("page");
if (page) render(<main />, page);
