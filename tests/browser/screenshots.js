// Pictures of the page's main states, for people who want to see it before they run it.

import { mkdir } from "node:fs/promises";
import path from "node:path";
import { closeBrowser, newContext } from "./support/browser.js";
import { Desk } from "./support/desk.js";
import { Simulator } from "./support/simulator.js";

// The README's are JPEGs in docs/, the others PNGs.
const ofReadme = ["alarm", "alerts", "dark", "lock-screen"];
const isForReadme = process.argv[2] === "--readme";
const folder = isForReadme ? "docs" : (process.argv[2] ?? "build/screenshots");

/// Opens the page of a MacBook of its own, and has the states taken in their order.
async function withDesk(options, take) {
    const simulator = await Simulator.start(options);
    try {
        const page = await (await newContext(options.browser)).newPage();
        await page.goto(simulator.address);
        const desk = new Desk(simulator, page, []);
        await desk.menuItem.waitFor();
        await take(desk);
        await page.context().close();
    } finally {
        await simulator.close();
    }
}

async function picture(desk, name) {
    if (isForReadme && !ofReadme.includes(name)) {
        return;
    }
    // Without the pointer's and the keyboard's traces, and with all pictures there.
    await desk.page.mouse.move(0, 0);
    await desk.page.evaluate(() => {
        // One further down is loaded only when somebody scrolls there.
        const seen = [...document.images].filter((image) => image.getBoundingClientRect().top < innerHeight);
        return Promise.all(seen.map((image) => image.decode().catch(() => {})));
    });
    const file = path.join(folder, isForReadme ? `${name}.jpg` : `${name}.png`);
    await desk.page.screenshot(isForReadme ? { path: file, type: "jpeg", quality: 70 } : { path: file });
    console.log(file);
}

async function lookAtAlert(desk) {
    const list = await desk.open("Alert List", "Alert List");
    await list.getByRole("option").click();
    await list.getByRole("img", { name: "Photo of the alert" }).waitFor();
    await list.getByText("Waiting to upload to iCloud").first().waitFor({ state: "hidden" });
}

async function firstVisit(desk) {
    await desk.phone.getByText("Disarmed").waitFor();
    await picture(desk, "first-visit");
}

async function theft(desk) {
    await desk.phone.getByText("Disarmed").waitFor();
    await desk.openMenu();
    await picture(desk, "desk");
    await desk.arm();
    await picture(desk, "armed");
    await desk.button("Unplugged", desk.hardware).click();
    await desk.button("Photo: Unplugged", desk.phone).waitFor();
    await picture(desk, "alarm");
    if (!isForReadme) {
        await desk.phone.screenshot({ path: path.join(folder, "phone.png") });
    }
    await desk.button("Stop Alarm", desk.menu).click();
    await desk.button("Log in", desk.screen).waitFor();
    await picture(desk, "login");
    await desk.logIn();
    await lookAtAlert(desk);
    await picture(desk, "alerts");
}

async function controlPanel(desk) {
    await desk.open("Settings", "Sentrel");
    await picture(desk, "control-panel");
}

async function cover(desk) {
    await desk.arm();
    await desk.screen.getByRole("dialog", { name: "Lock screen of display 1" }).waitFor();
    await picture(desk, "lock-screen");
}

async function german(desk) {
    await desk.phone.getByText("Keine Alarme").waitFor();
    await desk.phone.getByText("In diesem Account wurde noch kein Mac gesehen.").waitFor({ state: "hidden" });
    await desk.openMenu();
    await picture(desk, "german");
}

async function alertIn(name, desk) {
    await desk.haveAnAlert();
    await lookAtAlert(desk);
    await picture(desk, name);
}

await mkdir(folder, { recursive: true });
try {
    await withDesk({ browser: { isFirstVisit: true } }, firstVisit);
    await withDesk({}, theft);
    await withDesk({}, controlPanel);
    await withDesk({ scenario: "wrong-passcodes" }, cover);
    await withDesk({ browser: { colorScheme: "dark" } }, (desk) => alertIn("dark", desk));
    const narrow = { viewport: { width: 390, height: 800 } };
    await withDesk({ browser: narrow }, (desk) => alertIn("narrow", desk));
    await withDesk({ language: "de_DE" }, german);
} finally {
    await closeBrowser();
}
