// A theft, as the page shows it and as it sounds.

import assert from "node:assert/strict";
import test from "node:test";
import { coloursOf, meanColourOf } from "./support/desk.js";
import { fallsSilent, listen } from "./support/ear.js";
import { openPage, sitDown } from "./support/sitting.js";

const toneFrequency = 880; // hertz

test("the alarm is heard from the charger's pull until the owner stops it with her login", async (t) => {
    const desk = await sitDown(t);
    await desk.button("Turn sound on").click();
    await desk.button("Turn sound off").waitFor();
    await fallsSilent(desk.page);
    await desk.button("Mute Headphones").click();
    assert.ok((await listen(desk.page)).loudness > 1e-3, "the music plays");
    await desk.button("Paused", desk.hardware).click();
    await desk.arm();
    await fallsSilent(desk.page);

    await desk.button("Unplugged", desk.hardware).click();
    await desk.tells("→ The alarm sounds through MacBook Pro Speakers at 83 %.");
    const heard = await listen(desk.page);
    assert.ok(heard.loudness > 0.1, `it is loud: ${heard.loudness}`);
    assert.ok(Math.abs(heard.frequency - toneFrequency) < 10, `it is the tone: ${heard.frequency} Hz`);

    await desk.button("Mute MacBook Pro Speakers").click();
    await desk.tells("Sentrel has it back at 83 %.");
    assert.ok((await listen(desk.page)).loudness > 0.1, "muting does not help");

    const stop = desk.button("Stop Alarm", await desk.openMenu());
    await stop.click();
    await desk.logIn("Wrong password");
    assert.ok((await listen(desk.page)).loudness > 0.1, "a wrong password does not help");
    await stop.click();
    await desk.logIn();
    await stop.waitFor({ state: "detached" });
    await fallsSilent(desk.page);
    await desk.isArmed();
});

test("the phone shows the alert with its photo, arms and disarms", async (t) => {
    const desk = await sitDown(t);
    await desk.button("Arm Maya's MacBook Pro from the phone").click();
    await desk.isArmed();
    await desk.button("Closed", desk.hardware).click();
    await desk.tells("→ The owner's phone shows: “Lid closed on Maya's MacBook Pro”");
    await desk.button("Open", desk.hardware).click();
    await desk.button("Unplugged", desk.hardware).click();
    await desk.button("Photo: Unplugged", desk.phone).click();
    assert.ok((await coloursOf(desk.phone.getByRole("img", { name: "Photo: Unplugged" }))) > 100);
    await desk.page.keyboard.press("Escape");
    await desk.button("Photo: Unplugged", desk.phone).and(desk.page.locator(":focus")).waitFor();
    await desk.button("Disarm Maya's MacBook Pro from the phone").click();
    await desk.isArmed(false);
});

test("two pages show the same Mac", async (t) => {
    const one = await sitDown(t);
    const other = await openPage(one, { colorScheme: "dark", viewport: { width: 390, height: 800 } });
    await one.arm();
    await other.isArmed();
    await other.button("Unplugged", other.hardware).click();
    const stop = one.button("Stop Alarm", await one.openMenu());
    await stop.waitFor();
    await other.button("Stop Alarm", await other.openMenu()).click();
    await one.logIn();
    await other.button("Log in", other.screen).waitFor({ state: "detached" });
    await stop.waitFor({ state: "detached" });
    assert.equal(await other.story.innerText(), await one.story.innerText());
});

test("the visitor's own webcam is what the Mac's camera sees", async (t) => {
    const desk = await sitDown(t);
    const source = desk.hardware.getByRole("toolbar", { name: "Camera sees" });
    const scene = desk.hardware.getByAltText("What the camera sees");
    assert.ok((await coloursOf(scene)) > 100, "at first a café");
    await desk.button("Your webcam", source).click();
    await desk.page.getByRole("alert").getByText("The webcam can't be used").waitFor();
    await desk.page.context().grantPermissions(["camera"]);
    await desk.button("Your webcam", source).click();
    await source.locator("[aria-pressed=true]").getByText("Your webcam").waitFor();
    await desk.haveAnAlert();
    for (const picture of [scene, desk.button("Photo: Unplugged", desk.phone).locator("img")]) {
        const [red, green, blue] = await meanColourOf(picture);
        assert.ok(green > red + 40 && green > blue + 40, `it is the webcam's: ${[red, green, blue]}`);
    }
    await desk.button("A café", source).click();
    await source.locator("[aria-pressed=true]").getByText("A café").waitFor();
});
