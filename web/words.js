// The phone's words, in the languages that the product has. Each table has them in the order of their names.

const names = (
    "alerts noAlerts notifications noMacs armed disarmed arm disarm byPhone seen on photo closePhoto"
).split(" ");

const tables = {
    en: [
        "Alerts", "No alerts", "Notifications", "No Mac has been seen in this account.", "Armed", "Disarmed", "Arm",
        "Disarm", "{action} {mac} from the phone", "seen {ago}", "{what} on {mac}", "Photo: {what}", "Close photo",
    ],
    de: [
        "Alarme", "Keine Alarme", "Mitteilungen", "In diesem Account wurde noch kein Mac gesehen.", "Scharf",
        "Unscharf", "Scharf schalten", "Unscharf schalten", "{action}: {mac}, vom iPhone aus", "gesehen {ago}",
        "{what}: {mac}", "Foto: {what}", "Foto schließen",
    ],
    fr: [
        "Alertes", "Aucune alerte", "Notifications", "Aucun Mac n’a été vu dans ce compte.", "Armé", "Désarmé",
        "Armer", "Désarmer", "{action} {mac} depuis l’iPhone", "vu {ago}", "{what} : {mac}", "Photo : {what}",
        "Fermer la photo",
    ],
    es: [
        "Alertas", "No hay alertas", "Notificaciones", "No se ha visto ningún Mac en esta cuenta.", "Armado",
        "Desarmado", "Armar", "Desarmar", "{action} {mac} desde el iPhone", "visto {ago}", "{what}: {mac}",
        "Foto: {what}", "Cerrar la foto",
    ],
    ja: [
        "アラート", "アラートはありません", "通知", "このアカウントのMacはまだ確認されていません。", "警戒中", "警戒解除", "警戒を開始", "警戒を解除",
        "iPhoneから{mac}の{action}", "確認：{ago}", "{mac}：{what}", "写真：{what}", "写真を閉じる",
    ],
    "zh-Hans": [
        "警报", "没有警报", "通知", "此账户中尚未见到任何 Mac。", "已布防", "已撤防", "布防", "撤防", "从 iPhone {action}：{mac}", "{ago}见到",
        "{mac}：{what}", "照片：{what}", "关闭照片",
    ],
};

/// The table for a language tag, by its longest beginning that has one.
function tableFor(tag) {
    const parts = tag.split("-");
    while (parts.length > 0 && !tables[parts.join("-")]) {
        parts.pop();
    }
    return tables[parts.join("-")] ?? (tag.startsWith("zh") ? tables["zh-Hans"] : tables.en);
}

/// The words of one language: `words(name, {values})`.
export function wordsIn(language) {
    const table = tableFor(language);
    return (name, values = {}) => table[names.indexOf(name)].replace(/\{(\w+)\}/g, (_, key) => values[key]);
}

const units = [["second", 1, 90], ["minute", 60, 5400], ["hour", 3600, Infinity]];
const justNow = 10; // seconds

/// How long ago, in the words of a language.
export function ago(seconds, language) {
    const format = new Intl.RelativeTimeFormat(language, { numeric: "auto", style: "short" });
    const [unit, length] = units.find(([, , end]) => seconds < end);
    return format.format(seconds < justNow ? 0 : -Math.round(seconds / length), unit);
}
