// Sends personal mails with nodemailer, one after the other, each over a connection of its own, or with "pool" all
// over one that is kept.
//   node send.js '{"port":…,"count":…,"starttls":…,"authority":…,"document":…,"text":…,"pool":…}'
// Prints the seconds that it took. The time begins when everything is loaded.
'use strict';

const fs = require('fs');
const nodemailer = require('nodemailer');

async function main() {
    const wanted = JSON.parse(process.argv[2]);
    const document = fs.readFileSync(wanted.document, 'utf8');
    const text = wanted.text ? fs.readFileSync(wanted.text, 'utf8') : undefined;
    const transport = nodemailer.createTransport({
        host: '127.0.0.1',
        port: wanted.port,
        name: 'bench.example',
        secure: false,
        pool: wanted.pool,
        maxConnections: 1,
        maxMessages: Infinity,
        ignoreTLS: !wanted.starttls,
        requireTLS: wanted.starttls,
        auth: wanted.starttls ? { user: 'ada', pass: 'secret' } : undefined,
        tls: wanted.starttls ? { ca: fs.readFileSync(wanted.authority) } : undefined,
    });
    const begin = process.hrtime.bigint();
    for (let i = 1; i <= wanted.count; ++i) {
        const name = `Recipient Number ${i}`;
        await transport.sendMail({
            from: { name: 'Ada King', address: 'ada@x.example' },
            to: { name, address: `r${i}@y.example` },
            subject: `News for ${name}`,
            text: text?.replaceAll('{Full Name of The Recipient}', name),
            html: document.replaceAll('{Full Name of The Recipient}', name),
        });
    }
    console.log(Number(process.hrtime.bigint() - begin) / 1e9);
    transport.close();
}

main().catch(error => {
    console.error(error);
    process.exitCode = 1;
});
