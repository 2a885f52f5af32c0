// The words of words.js in the other languages that the product has. Each table has them in the order of the names.

const names = (
    "alerts noAlerts notifications noMacs armed disarmed arm disarm byPhone seen on photo closePhoto " +
    "cancel wrong logIn ok save close trying how place fileName photoTitle"
).split(" ");

const tables = {
    de: [
        "Alarme", "Keine Alarme", "Mitteilungen", "In diesem Account wurde noch kein Mac gesehen.", "Scharf",
        "Unscharf", "Scharf schalten", "Unscharf schalten", "{action}: {mac}, vom iPhone aus", "gesehen {ago}",
        "{what}: {mac}", "Foto: {what}", "Foto schließen", "Abbrechen", "Falsches Passwort", "Anmelden", "OK",
        "Sichern", "Schließen", "Sentrel versucht, {reason}.",
        "Verwende Touch ID oder gib das Passwort des Benutzers dieses Mac ein.", "In „{folder}“", "Dateiname",
        "Foto des Alarms",
    ],
    fr: [
        "Alertes", "Aucune alerte", "Notifications", "Aucun Mac n’a été vu dans ce compte.", "Armé", "Désarmé",
        "Armer", "Désarmer", "{action} {mac} depuis l’iPhone", "vu {ago}", "{what} : {mac}", "Photo : {what}",
        "Fermer la photo", "Annuler", "Mot de passe erroné", "S’identifier", "OK", "Enregistrer", "Fermer",
        "Sentrel essaie de {reason}.", "Utilisez Touch ID ou saisissez le mot de passe de l’utilisateur de ce Mac.",
        "Dans « {folder} »", "Nom du fichier", "Photo de l’alerte",
    ],
    es: [
        "Alertas", "No hay alertas", "Notificaciones", "No se ha visto ningún Mac en esta cuenta.", "Armado",
        "Desarmado", "Armar", "Desarmar", "{action} {mac} desde el iPhone", "visto {ago}", "{what}: {mac}",
        "Foto: {what}", "Cerrar la foto", "Cancelar", "Contraseña incorrecta", "Iniciar sesión", "Aceptar", "Guardar",
        "Cerrar", "Sentrel está intentando {reason}.",
        "Usa Touch ID o introduce la contraseña del usuario de este Mac.", "En “{folder}”", "Nombre del archivo",
        "Foto de la alerta",
    ],
    ja: [
        "アラート", "アラートはありません", "通知", "このアカウントのMacはまだ確認されていません。", "警戒中", "警戒解除", "警戒を開始", "警戒を解除",
        "iPhoneから{mac}の{action}", "確認：{ago}", "{mac}：{what}", "写真：{what}", "写真を閉じる", "キャンセル", "間違ったパスワード", "ログイン",
        "OK", "保存", "閉じる", "Sentrelが{reason}しようとしています。", "Touch IDを使用するか、このMacのユーザのパスワードを入力してください。", "“{folder}”内",
        "ファイル名", "アラートの写真",
    ],
    "zh-Hans": [
        "警报", "没有警报", "通知", "此账户中尚未见到任何 Mac。", "已布防", "已撤防", "布防", "撤防", "从 iPhone {action}：{mac}", "{ago}见到",
        "{mac}：{what}", "照片：{what}", "关闭照片", "取消", "密码错误", "登录", "好", "存储", "关闭", "Sentrel 正在尝试{reason}。",
        "使用触控 ID 或输入此 Mac 用户的密码。", "在“{folder}”中", "文件名", "警报照片",
    ],
};

/// Of tables by language, the one for a tag's longest beginning that has one; none without one.
export function tableOf(tables, tag) {
    const parts = tag.split("-");
    while (parts.length > 0 && !tables[parts.join("-")]) {
        parts.pop();
    }
    return tables[parts.join("-")] ?? (tag.startsWith("zh") ? tables["zh-Hans"] : undefined);
}

/// The words by name for a language tag; none without a table.
export function tableFor(tag) {
    return Object.fromEntries((tableOf(tables, tag) ?? []).map((word, index) => [names[index], word]));
}
