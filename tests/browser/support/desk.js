// A person at the desk: the page of a simulated MacBook, and what she does there all the time.

export class Desk {
    complaints = [];

    constructor(simulator, page, desks) {
        Object.assign(this, { simulator, page, desks });
        this.screen = page.locator("#screen");
        this.phone = page.locator("#phone");
        this.hardware = page.locator("#hardware");
        this.story = page.locator("#story");
        this.menuItem = page.locator(".menu-item");
        this.menu = page.getByRole("dialog", { name: "Sentrel menu" });
    }

    /// A control somewhere: `button("Unplugged")`, or in a part of the page.
    button(name, part = this.page) {
        return part.getByRole("button", { name, exact: true });
    }

    window(title) {
        return this.screen.getByRole("dialog", { name: title, exact: true });
    }

    async openMenu() {
        if ((await this.menuItem.getAttribute("aria-expanded")) !== "true") {
            await this.menuItem.click();
        }
        await this.menu.waitFor();
        return this.menu;
    }

    async arm() {
        await (await this.openMenu()).getByRole("checkbox", { name: "Armed", exact: true }).click();
        await this.isArmed();
    }

    /// Goes on by the Tab key until this has the keyboard.
    async tabTo(control) {
        for (let tabs = 0; tabs < 120; ++tabs) {
            if (await control.evaluate((element) => document.activeElement === element)) {
                return;
            }
            await this.page.keyboard.press("Tab");
        }
        throw new Error(`the Tab key does not lead to ${control}`);
    }

    /// Goes by keyboard to a choice of the hardware, which is one stop of the Tab key, and in it to this button.
    async arrowTo(name, group) {
        const choice = this.hardware.getByRole("toolbar", { name: group, exact: true });
        await this.tabTo(choice.locator("[tabindex='0']"));
        const wanted = this.button(name, choice).and(this.page.locator(":focus"));
        for (let steps = 0; steps < 4 && (await wanted.count()) === 0; ++steps) {
            await this.page.keyboard.press("ArrowRight");
        }
        await wanted.waitFor();
    }

    isArmed(armed = true) {
        return this.button(`Sentrel: ${armed ? "Armed" : "Disarmed"}`, this.screen).waitFor();
    }

    /// Opens a window by the menu's button and logs in.
    async open(button, title) {
        await this.button(button, await this.openMenu()).click();
        await this.logIn();
        await this.window(title).waitFor();
        return this.window(title);
    }

    async logIn(answer = "Log in") {
        await this.button(answer, this.screen).click();
        await this.button(answer, this.screen).waitFor({ state: "detached" });
    }

    /// Waits until the story tells this.
    tells(text) {
        return this.story.getByText(text).first().waitFor();
    }

    /// Pulls the charger of the armed Mac, and waits until the owner's phone shows the alert with its photo.
    async haveAnAlert() {
        // The Mac asks for notifications about when the phone first knows it; an alert before that brings none.
        await this.phone.getByText("Maya's MacBook Pro").first().waitFor();
        await this.arm();
        await this.button("Unplugged", this.hardware).click();
        await this.button("Photo: Unplugged", this.phone).waitFor();
    }
}

/// Waits until a picture is decoded, also one that another follows meanwhile.
async function decoded(image) {
    await image.evaluate(async (element) => {
        for (let tries = 0; tries < 20; ++tries) {
            try {
                return await element.decode();
            } catch {
                await new Promise((done) => setTimeout(done, 50));
            }
        }
        throw new Error(`${element.src} can't be decoded`);
    });
    return image;
}

/// How many colours a picture shows, of a 32nd of its pixels.
export async function coloursOf(image) {
    return (await decoded(image)).evaluate((element) => {
        const [width, height] = [element.naturalWidth, element.naturalHeight];
        const context = new OffscreenCanvas(width, height).getContext("2d");
        context.drawImage(element, 0, 0);
        const pixels = new Uint32Array(context.getImageData(0, 0, width, height).data.buffer);
        return new Set(pixels.filter((_, index) => index % 32 === 0)).size;
    });
}

/// How far a picture on the page is from one in a file: the mean over all pixels and channels, of 255.
export function differenceOf(image, file) {
    return image.evaluate(async (element, bytes) => {
        const picture = await createImageBitmap(new Blob([new Uint8Array(bytes)]));
        const [one, other] = [element, picture].map((each) => {
            const context = new OffscreenCanvas(picture.width, picture.height).getContext("2d");
            context.drawImage(each, 0, 0, picture.width, picture.height);
            return context.getImageData(0, 0, picture.width, picture.height).data;
        });
        return one.reduce((sum, value, index) => sum + Math.abs(value - other[index]), 0) / one.length;
    }, [...file]);
}

/// A picture's mean colour: red, green and blue, of 255.
export async function meanColourOf(image) {
    return (await decoded(image)).evaluate((element) => {
        const context = new OffscreenCanvas(1, 1).getContext("2d");
        context.imageSmoothingQuality = "high";
        context.drawImage(element, 0, 0, 1, 1);
        return [...context.getImageData(0, 0, 1, 1).data.slice(0, 3)];
    });
}
