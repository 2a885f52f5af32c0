// Pictures of the page's main states, for people who want to see it before they run it.

import { mkdir } from "node:fs/promises";
import path from "node:path";
import { closeBrowser, newContext } from "./support/browser.js";
import { Desk } from "./support/desk.js";
import { Simulator } from "./support/simulator.js";

const folder = process.argv[2] ?? "build/screenshots";

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
    // Without the pointer's and the keyboard's traces, and with all pictures there.
    await desk.page.mouse.move(0, 0);
    await desk.page.evaluate(() => {
        // One further down is loaded only when somebody scrolls there.
        const seen = [...document.images].filter((image) => image.getBoundingClientRect().top < innerHeight);
        return Promise.all(seen.map((image) => image.decode().catch(() => {})));
    });
    await desk.page.screenshot({ path: path.join(folder, `${name}.png`) });
    console.log(path.join(folder, `${name}.png`));
}

async function lookAtAlert(desk) {
    const list = await desk.open("Alert List", "Alert List");
    await list.getByRole("option").click();
    await list.getByRole("img", { name: "Photo of the alert" }).waitFor();
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
    await desk.phone.screenshot({ path: path.join(folder, "phone.png") });
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
