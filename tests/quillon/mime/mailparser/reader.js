// Reads the mails named on the command line with mailparser; prints one JSON object a line for each. All texts are
// Base64 of UTF-8, so that any character reaches the test.
'use strict';

const crypto = require('crypto');
const fs = require('fs');
const { simpleParser } = require('mailparser');

const options = { skipHtmlToText: true, skipTextToHtml: true, skipTextLinks: true, skipImageLinks: true, keepCidLinks: true };
const coded = text => Buffer.from(text || '', 'utf8').toString('base64');
const mailboxes = field => {
    const fields = Array.isArray(field) ? field : field ? [field] : [];
    return fields.flatMap(f => f.value).filter(a => a.address).map(a => [coded(a.name), coded(a.address)]);
};

async function read(path) {
    const mail = await simpleParser(fs.readFileSync(path), options);
    return {
        subject: coded(mail.subject),
        from: mailboxes(mail.from),
        replyTo: mailboxes(mail.replyTo),
        to: mailboxes(mail.to),
        cc: mailboxes(mail.cc),
        headers: mail.headerLines.map(line => line.key),
        text: coded(mail.text),
        html: coded(mail.html || ''),
        files: mail.attachments.map(file => ({
            name: coded(file.filename),
            type: file.contentType,
            id: file.cid || '',
            sha256: crypto.createHash('sha256').update(file.content).digest('hex'),
        })),
    };
}

(async () => {
    for (const path of process.argv.slice(2)) {
        console.log(JSON.stringify(await read(path)));
    }
})().catch(error => {
    console.error(error);
    process.exit(1);
});
